// Annotate.cpp - the cold path of the catch-and-annotate wrapper
#include <quarn/core/Annotate.h>

#include <new>

#include <quarnCore/Exception.h>

namespace quarn::detail {

void rethrowAnnotated(char const *className, char const *operation) {
  try {
    throw;
  } catch (MemoryException const &e) {
    if (className)
      throw Exception("%hs::%hs: Bad Allocation %ls", className, operation, e.getMessage().getBuffer());
    throw Exception("%hs: Bad Allocation %ls", operation, e.getMessage().getBuffer());
  } catch (Exception &e) {
    if (className)
      e.annotateFormat("%hs::%hs: Tessary exception caught", className, operation);
    else
      e.annotateFormat("%hs: Tessary exception caught", operation);
    throw;
  } catch (std::bad_alloc const &e) {
    if (className) throw Exception("%hs::%hs: Bad Allocation %hs", className, operation, e.what());
    throw Exception("%hs: Bad Allocation %hs", operation, e.what());
  } catch (...) {
    if (className) throw Exception("%hs::%hs: Severe error caught", className, operation);
    throw Exception("%hs: Severe error caught", operation);
  }
}

}  // namespace quarn::detail
