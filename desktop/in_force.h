// Puts an application in force for as long as this lives, and then the one before it.
//
//   struct CDesktopApplication::Desk {
//     explicit Desk(CApplication &application) : inForce(application) {}
//     InForce inForce;
//   };

#pragma once

#include <quillaven/platform/application.h>

/// Several may live, and may end in any order: one that ends is brought back by no other, and leaves
/// alone what is in force when it is not its own application.
class InForce {
 public:
  explicit InForce(CApplication &application);
  ~InForce();
  InForce(InForce const &) = delete;
  InForce &operator=(InForce const &) = delete;

 private:
  CApplication *m_application;
  CApplication *m_before;
};
