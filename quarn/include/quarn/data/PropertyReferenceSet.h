// PropertyReferenceSet.h - counted references to properties, as tree queries return them
//
// A ReferenceSetImpl<iProperty> (see there for the reference counting) with a
// diagnostic listing.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/data/ReferenceSetImpl.h>
#include <quarnCore/BaseString.h>

namespace quarn {

class QUARN_API PropertyReferenceSet : public ReferenceSetImpl<iProperty> {
 public:
  using ReferenceSetImpl<iProperty>::ReferenceSetImpl;
  using ReferenceSetImpl<iProperty>::operator=;
  ~PropertyReferenceSet() override;

  /// Replaces `out` with one line per entry: "[i] name = value" (the value's
  /// dump text, "undefined" when it has none), or "[i] null".
  virtual void dump(BaseString<unsigned short> &out) const;
};

}  // namespace quarn
