// ReferenceSetImpl.h - an ordered list of counted references to nodes or properties
//
// What tree queries return: the members in order, duplicates and null entries
// allowed. The set owns one reference on every non-null member for as long as
// the member is in it (addRef when it enters, release when it leaves); the
// set itself is not counted, it belongs to whoever made it. One body serves
// both instantiations, ReferenceSetImpl<iNode> and ReferenceSetImpl<iProperty>
// (NodeReferenceSet, PropertyReferenceSet).
//
// Null entries: add(nullptr) appends one and touches no count, and remove
// skips the release for it. AddRefAllNodes and ReleaseAllNodes do not test for
// null, deliberately, so a set that is copied, assigned, cleared or destroyed
// must hold no null entry. Growing with resize adds entries that carry no
// reference and that the caller fills through operator[] before anything
// reads them (here they start null). Assignment releases the current members
// before taking the new ones, so assigning a set to itself releases and
// re-takes the same references: a member held by nothing but this set is
// deleted on the way.
//
// Indices at or beyond the size throw InvalidIndexException(index, size - 1).
// add, remove, resize, clear, AddRefAllNodes and ReleaseAllNodes annotate what
// passes through them ("ReferenceSetImpl::add: Tessary exception caught", and
// the Bad Allocation and Severe error forms).
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/iNode.h>
#include <quarn/core/iProperty.h>
#include <quarnCore/Array.h>

namespace quarn {

template <class T>
class QUARN_API ReferenceSetImpl {
 public:
  ReferenceSetImpl() = default;
  /// The same members, each with a reference of this set's own.
  ReferenceSetImpl(ReferenceSetImpl const &other);
  ReferenceSetImpl(Array<T *> const &members);  // NOLINT(google-explicit-constructor)
  /// clear(): releases every member.
  virtual ~ReferenceSetImpl();

  /// AssignFrom(other's members).
  ReferenceSetImpl &operator=(ReferenceSetImpl const &other);
  ReferenceSetImpl &operator=(Array<T *> const &members);

  /// Entry `i` (checked); storing through the reference changes no count.
  T *&operator[](unsigned int i) { return m_array[i]; }
  T *operator[](unsigned int i) const { return m_array[i]; }
  Array<T *> &getArray() noexcept { return m_array; }
  Array<T *> const &getArray() const noexcept { return m_array; }
  unsigned int getSize() const noexcept { return m_array.getSize(); }

  /// Appends `member` (null allowed) and takes a reference on a non-null one.
  void add(T *member);
  /// Releases entry `i` (unless null) and removes it; later entries move forward.
  void remove(unsigned int i);
  /// Shrinking releases the non-null entries from `n` on; growing adds entries
  /// that carry no reference.
  void resize(unsigned int n);
  /// Releases every entry and frees the storage.
  void clear();

 protected:
  /// addRef / release every entry in index order, without a null test.
  void AddRefAllNodes();
  void ReleaseAllNodes();
  /// ReleaseAllNodes, copy the pointers of `members`, AddRefAllNodes.
  void AssignFrom(Array<T *> const &members);

  Array<T *> m_array;
};

extern template class QUARN_API ReferenceSetImpl<iNode>;
extern template class QUARN_API ReferenceSetImpl<iProperty>;

}  // namespace quarn
