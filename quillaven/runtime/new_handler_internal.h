// What a test needs to see of the handlers in force.
//
//   AllocationBehaviour const before = CurrentAllocationBehaviour();

#pragma once

#include <quillaven/runtime/new_handler.h>

struct AllocationBehaviour {
  int mode = 0;                           // 1 within a guard; a number alone
  QuillavenNewHandler handler = nullptr;  // null: none of this library's
  std::new_handler standard = nullptr;    // what the standard library calls

  bool operator==(AllocationBehaviour const &) const = default;
};

AllocationBehaviour CurrentAllocationBehaviour() noexcept;
