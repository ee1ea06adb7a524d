// Counter.h - the example component "Marlix.example.Counter"
//
// A component with state: every instance keeps its own count, starting at 0.
#pragma once

#include <example/iCounter.h>
#include <quarn/core/ComponentImpl.h>

namespace example {

class Counter : public quarn::ComponentImpl<Counter, iCounter> {
  QUARN_COMPONENT(Counter)

 public:
  int increment() override { return ++m_count; }
  int getCount() const override { return m_count; }

 private:
  int m_count = 0;
};

}  // namespace example
