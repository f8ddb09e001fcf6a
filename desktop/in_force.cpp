#include "desktop/in_force.h"

#include <vector>

namespace {

std::vector<InForce *> &Living() {
  static std::vector<InForce *> living;
  return living;
}

}  // namespace

InForce::InForce(CApplication &application)
    : m_application(&application), m_before(SetApplication(&application)) {
  Living().push_back(this);
}

// Whoever would have brought this application back brings back what was before it.
InForce::~InForce() {
  std::erase(Living(), this);
  for (InForce *other : Living())
    if (other->m_before == m_application) other->m_before = m_before;
  if (&GetApplication() == m_application) SetApplication(m_before);
}
