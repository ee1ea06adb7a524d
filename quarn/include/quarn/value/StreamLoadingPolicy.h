// StreamLoadingPolicy.h - whether reading a stream may load component libraries
//
// A value array names the class of each element in its payload and makes the
// element by that name. A class already bound in the process (the values of
// libquarn and of every library loaded so far) is always made; a name that no
// bound class serves is served by loading the component library registered
// for it, and loading a library runs its code. So data from an untrusted
// source must not decide which libraries load: the reader decides it with a
// policy.
//
// The policy of a read is the one of the innermost StreamLoadingScope of that
// stream on this thread, else the process policy (setProcessPolicy), which is
// allowAll() until someone changes it. A name the policy refuses fails with
// "Class %hs is not loaded and this stream may not load it" before any
// library is opened; a name that is not registered at all still fails with
// "Class %hs not registered.". A bound class that does not make values is
// refused ("Class %hs is not a value") before an instance is made; a class
// that comes from a library can only be checked once the library made one.
//
//   quarn::StreamLoadingScope scope(in, quarn::StreamLoadingPolicy::forbidAll());
//   record.deserialize(in);   // only classes already bound can be read
//
// A stream read while another is read (a record's own slice of a record
// file, say) follows the outer stream's policy through a scope that names
// both: StreamLoadingScope(inner, outer).
//
// Threads: scopes belong to the thread that made them; the process policy may
// be changed from any thread and applies to reads that start afterwards.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/value/ByteStream.h>

#include <memory>
#include <string>
#include <vector>

namespace quarn {

class QUARN_API StreamLoadingPolicy {
 public:
  /// Any registered name may load its library (the process default).
  static StreamLoadingPolicy allowAll();
  /// No library is loaded for a name read from a stream.
  static StreamLoadingPolicy forbidAll();
  /// Only names that start with one of `prefixes` (compared exactly, byte by byte) may load their library.
  static StreamLoadingPolicy allowPrefixes(std::vector<std::string> prefixes);

  /// Whether a library may be loaded to serve `className`.
  bool allows(char const *className) const noexcept;

  /// The policy of every read that no StreamLoadingScope covers.
  static void setProcessPolicy(StreamLoadingPolicy policy);
  static StreamLoadingPolicy processPolicy();

 private:
  StreamLoadingPolicy(bool all, std::shared_ptr<std::vector<std::string> const> prefixes)
      : m_all(all), m_prefixes(std::move(prefixes)) {}

  bool m_all;
  std::shared_ptr<std::vector<std::string> const> m_prefixes;  // shared, so that a copy allocates nothing
};

/// While it lives, `policy` decides for every read of `stream` on this thread.
class QUARN_API StreamLoadingScope {
 public:
  StreamLoadingScope(iByteInputStream const &stream, StreamLoadingPolicy policy);
  /// While it lives, reads of `stream` on this thread follow the policy in
  /// force for `outer` now (its innermost scope's, else the process policy).
  StreamLoadingScope(iByteInputStream const &stream, iByteInputStream const &outer);
  ~StreamLoadingScope();
  StreamLoadingScope(StreamLoadingScope const &) = delete;
  StreamLoadingScope &operator=(StreamLoadingScope const &) = delete;

  /// Whether reading `stream` on this thread may load a library for `className`.
  static bool allows(iByteInputStream const &stream, char const *className);

 private:
  static StreamLoadingScope const *find(iByteInputStream const &stream) noexcept;

  iByteInputStream const *m_stream;
  StreamLoadingPolicy m_policy;
  StreamLoadingScope const *m_rules;  // the scope whose m_policy decides; null: the process policy
  StreamLoadingScope *m_outer;
};

}  // namespace quarn
