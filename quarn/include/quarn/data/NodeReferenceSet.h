// NodeReferenceSet.h - counted references to data-tree nodes, as tree queries return them
//
// A ReferenceSetImpl<iNode> (see there for the reference counting) with a
// diagnostic listing.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/data/ReferenceSetImpl.h>
#include <quarnCore/BaseString.h>

namespace quarn {

class QUARN_API NodeReferenceSet : public ReferenceSetImpl<iNode> {
 public:
  using ReferenceSetImpl<iNode>::ReferenceSetImpl;
  using ReferenceSetImpl<iNode>::operator=;
  ~NodeReferenceSet() override;

  /// Replaces `out` with one line per entry: "[i] name", or "[i] null".
  virtual void dump(BaseString<unsigned short> &out) const;
};

}  // namespace quarn
