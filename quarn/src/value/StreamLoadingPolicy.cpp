// StreamLoadingPolicy.cpp - the loading policy of stream reads
#include <quarn/value/StreamLoadingPolicy.h>

#include <cstring>
#include <mutex>
#include <utility>


namespace quarn {

namespace {

struct ProcessPolicy {
  std::mutex mutex;
  StreamLoadingPolicy policy = StreamLoadingPolicy::allowAll();
};

ProcessPolicy &processPolicyStore() {
  static ProcessPolicy store;
  return store;
}

/// The innermost scope of this thread.
thread_local StreamLoadingScope *t_innermost = nullptr;

}  // namespace

StreamLoadingPolicy StreamLoadingPolicy::allowAll() { return StreamLoadingPolicy(true, nullptr); }
StreamLoadingPolicy StreamLoadingPolicy::forbidAll() { return StreamLoadingPolicy(false, nullptr); }
StreamLoadingPolicy StreamLoadingPolicy::allowPrefixes(std::vector<std::string> prefixes) {
  return StreamLoadingPolicy(false, std::make_shared<std::vector<std::string> const>(std::move(prefixes)));
}

bool StreamLoadingPolicy::allows(char const *className) const noexcept {
  if (m_all) return true;
  if (!m_prefixes) return false;
  for (std::string const &prefix : *m_prefixes)
    if (std::strncmp(className, prefix.c_str(), prefix.size()) == 0) return true;
  return false;
}

void StreamLoadingPolicy::setProcessPolicy(StreamLoadingPolicy policy) {
  ProcessPolicy &store = processPolicyStore();
  std::lock_guard lock(store.mutex);
  std::swap(store.policy, policy);  // the old one is freed outside the lock
}

StreamLoadingPolicy StreamLoadingPolicy::processPolicy() {
  ProcessPolicy &store = processPolicyStore();
  std::lock_guard lock(store.mutex);
  return store.policy;
}

StreamLoadingScope::StreamLoadingScope(iByteInputStream const &stream, StreamLoadingPolicy policy)
    : m_stream(&stream), m_policy(std::move(policy)), m_rules(this), m_outer(t_innermost) {
  t_innermost = this;
}

// Scopes end in the reverse order of their making, so the scope found for
// `outer` outlives this one.
StreamLoadingScope::StreamLoadingScope(iByteInputStream const &stream, iByteInputStream const &outer)
    : m_stream(&stream), m_policy(StreamLoadingPolicy::forbidAll()), m_outer(t_innermost) {
  StreamLoadingScope const *found = find(outer);
  m_rules = found ? found->m_rules : nullptr;
  t_innermost = this;
}

StreamLoadingScope::~StreamLoadingScope() { t_innermost = m_outer; }

StreamLoadingScope const *StreamLoadingScope::find(iByteInputStream const &stream) noexcept {
  for (StreamLoadingScope const *scope = t_innermost; scope; scope = scope->m_outer)
    if (scope->m_stream == &stream) return scope;
  return nullptr;
}

bool StreamLoadingScope::allows(iByteInputStream const &stream, char const *className) {
  if (StreamLoadingScope const *scope = find(stream)) {
    if (scope->m_rules) return scope->m_rules->m_policy.allows(className);
  }
  ProcessPolicy &store = processPolicyStore();
  std::lock_guard lock(store.mutex);
  return store.policy.allows(className);
}

}  // namespace quarn
