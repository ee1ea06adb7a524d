// Object.h - the root of every object that quarn creates, pools or counts
//
// Object gives run-time identity by class tag (isA / findAs / getAs, without
// the language's own type information, so that it works for objects made by
// any component library), the link to the class object, and the hooks for
// cloning, serialisation and deletion that concrete classes override. Objects
// are created and destroyed only through their class (newInstance, clone,
// deleteInstance), never with new and delete, so that pooled classes can
// recycle them: the destructor is protected.
//
// The virtual operations are declared in their slot order; that order is the
// vtable layout other binaries depend on.
#pragma once

#include <quarn/core/Class.h>
#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>

namespace quarn {

struct iByteOutputStream;
struct iByteInputStream;

class QUARN_API Object {
 public:
  /// 1. The class tag of the object's class (here "Marlix.obj.Object").
  virtual ClassTag const &getClassTag() const;
  /// 2. Whether findAs finds `tag`.
  virtual bool isA(ClassTag const &tag) const;
  /// 3. The object seen as the class or interface of `tag`, or null.
  virtual void *findAs(ClassTag const &tag) const;
  /// 4. As findAs, but a null answer throws NotImplementedException with the tag's name.
  virtual void *getAs(ClassTag const &tag) const;
  /// 5. 0 unless the class overrides it.
  virtual unsigned int hash() const;
  /// 6. A copy made through the class; null for a plain Object.
  virtual Object *clone() const;
  /// 7. The class object; a plain Object throws "Cannot return Class object for this class.".
  virtual Class const &getClass() const;
  /// 8. Writes the object's stored form; NotImplementedException "Object::serialize" here.
  virtual void serialize(iByteOutputStream &out) const;
  /// 9. Reads the stored form; NotImplementedException "Object::deserialize" here.
  virtual void deserialize(iByteInputStream &in);
  /// 10. Hands the object back to its class (pool or destruction); each concrete class overrides it.
  virtual void deleteInstance();

 protected:
  /// 11.
  virtual ~Object();
  /// 12. This object when `tag` is Object's tag, else null; classes answer for
  /// their own tag and then ask their bases in declaration order.
  virtual void *_SeekClassIdentity(ClassTag const &tag) const;

  Object() = default;
  Object(Object const &) = default;
  Object &operator=(Object const &) = default;

 public:
  /// findAs(T::Tag) cast to the type it names.
  template <class T>
  T *as() const {
    return static_cast<T *>(findAs(T::Tag));
  }
  /// getAs(T::Tag) cast to the type it names (NotImplementedException when absent).
  template <class T>
  T *getAs() const {
    return static_cast<T *>(getAs(T::Tag));
  }

  static ClassTagDecl const Tag;
  /// Process-wide switch: while true, released pooled instances are destroyed.
  static bool m_dontUsePools;
};

}  // namespace quarn
