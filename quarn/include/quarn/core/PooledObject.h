// PooledObject.h - the activation hooks of pooled classes
//
// A pooled class derives from PooledObject beside its other bases. Its class
// object (PooledClassImp) calls onActivate when an instance leaves the pool
// and onDeactivate when it enters it: a value resets its contents there and
// decides how much storage to keep for the next user.
#pragma once

#include <quarn/core/Export.h>

namespace quarn {

class QUARN_API PooledObject {
 public:
  virtual void onActivate() = 0;
  virtual void onDeactivate() = 0;

 protected:
  PooledObject() = default;
  PooledObject(PooledObject const &) = default;
  PooledObject &operator=(PooledObject const &) = default;
  virtual ~PooledObject();
};

}  // namespace quarn
