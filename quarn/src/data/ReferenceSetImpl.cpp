// ReferenceSetImpl.cpp - the one body of both reference sets, and their listings
#include <quarn/core/Annotate.h>
#include <quarn/data/NodeReferenceSet.h>
#include <quarn/data/PropertyReferenceSet.h>
#include <quarn/data/ReferenceSetImpl.h>
#include <quarn/value/Value.h>
#include <quarnCore/Throw.h>

#include <cstdio>
#include <string>

namespace quarn {

template <class T>
ReferenceSetImpl<T>::ReferenceSetImpl(ReferenceSetImpl const &other) : m_array(other.m_array) {
  AddRefAllNodes();
}

template <class T>
ReferenceSetImpl<T>::ReferenceSetImpl(Array<T *> const &members) : m_array(members) {
  AddRefAllNodes();
}

template <class T>
ReferenceSetImpl<T>::~ReferenceSetImpl() {
  clear();
}

template <class T>
ReferenceSetImpl<T> &ReferenceSetImpl<T>::operator=(ReferenceSetImpl const &other) {
  AssignFrom(other.m_array);
  return *this;
}

template <class T>
ReferenceSetImpl<T> &ReferenceSetImpl<T>::operator=(Array<T *> const &members) {
  AssignFrom(members);
  return *this;
}

template <class T>
void ReferenceSetImpl<T>::add(T *member) {
  detail::annotated(nullptr, "ReferenceSetImpl::add", [&] {
    m_array.append(member);
    if (member) member->addRef();
  });
}

template <class T>
void ReferenceSetImpl<T>::remove(unsigned int i) {
  detail::annotated(nullptr, "ReferenceSetImpl::remove", [&] {
    if (i >= m_array.getSize()) [[unlikely]]
      detail::throwInvalidIndex(i, m_array.getSize() - 1);
    if (T *member = m_array.getBuffer()[i]) member->release();
    m_array.remove(i);
  });
}

template <class T>
void ReferenceSetImpl<T>::resize(unsigned int n) {
  detail::annotated(nullptr, "ReferenceSetImpl::resize", [&] {
    for (unsigned int k = n; k < m_array.getSize(); ++k)
      if (T *member = m_array.getBuffer()[k]) member->release();
    m_array.reserve(n);
    m_array.resize(n);
  });
}

template <class T>
void ReferenceSetImpl<T>::clear() {
  detail::annotated(nullptr, "ReferenceSetImpl::clear", [&] {
    ReleaseAllNodes();
    m_array.clear();
  });
}

template <class T>
void ReferenceSetImpl<T>::AddRefAllNodes() {
  detail::annotated(nullptr, "ReferenceSetImpl::AddRefAllNodes", [&] {
    for (T *member : m_array) member->addRef();
  });
}

template <class T>
void ReferenceSetImpl<T>::ReleaseAllNodes() {
  detail::annotated(nullptr, "ReferenceSetImpl::ReleaseAllNodes", [&] {
    for (T *member : m_array) member->release();
  });
}

template <class T>
void ReferenceSetImpl<T>::AssignFrom(Array<T *> const &members) {
  Array<T *> copy(members);  // `members` may be this set's own array
  ReleaseAllNodes();
  m_array.swap(copy);
  AddRefAllNodes();
}

template class ReferenceSetImpl<iNode>;
template class ReferenceSetImpl<iProperty>;

namespace {

/// "[i] " at the start of a listing line.
void beginLine(BaseString<unsigned short> &out, unsigned int i) {
  char text[16];
  std::snprintf(text, sizeof text, "[%u] ", i);
  out.appendAscii(text);
}

}  // namespace

NodeReferenceSet::~NodeReferenceSet() = default;

void NodeReferenceSet::dump(BaseString<unsigned short> &out) const {
  BaseString<unsigned short> text("");
  for (unsigned int i = 0; i < getSize(); ++i) {
    beginLine(text, i);
    if (iNode const *node = m_array.getBuffer()[i])
      text.append(node->getName());
    else
      text.appendAscii("null");
    text.append(static_cast<unsigned short>('\n'));
  }
  out.swap(text);
}

PropertyReferenceSet::~PropertyReferenceSet() = default;

void PropertyReferenceSet::dump(BaseString<unsigned short> &out) const {
  BaseString<unsigned short> text(""), value;
  for (unsigned int i = 0; i < getSize(); ++i) {
    beginLine(text, i);
    if (iProperty const *property = m_array.getBuffer()[i]) {
      text.append(property->getName());
      text.appendAscii(" = ");
      if (Value const *held = property->getValue()) {
        held->dump(value, 0);
        text.append(value);
      } else {
        text.appendAscii("undefined");
      }
    } else {
      text.appendAscii("null");
    }
    text.append(static_cast<unsigned short>('\n'));
  }
  out.swap(text);
}

}  // namespace quarn
