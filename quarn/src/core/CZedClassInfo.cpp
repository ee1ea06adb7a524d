// CZedClassInfo.cpp - the registration entry as a value
#include <quarn/core/CZedClassInfo.h>

namespace quarn {

namespace {
BaseString<char> textOrEmpty(char const *text) { return BaseString<char>(text ? text : ""); }
}  // namespace

CZedClassInfo::CZedClassInfo() : progid(""), description(""), server("") {}

CZedClassInfo::CZedClassInfo(char const *progid_, char const *description_, char const *server_, bool proxy_)
    : progid(textOrEmpty(progid_)),
      description(textOrEmpty(description_)),
      server(textOrEmpty(server_)),
      proxy(proxy_) {}

CZedClassInfo::CZedClassInfo(CZedClassInfo const &other) = default;
CZedClassInfo::~CZedClassInfo() = default;
CZedClassInfo &CZedClassInfo::operator=(CZedClassInfo const &other) = default;

bool CZedClassInfo::operator<(CZedClassInfo const &other) const noexcept {
  if (int c = progid.compare(other.progid)) return c < 0;
  if (int c = server.compare(other.server)) return c < 0;
  if (int c = description.compare(other.description)) return c < 0;
  return proxy < other.proxy;
}

bool CZedClassInfo::operator==(CZedClassInfo const &other) const noexcept {
  return progid == other.progid && description == other.description && server == other.server && proxy == other.proxy;
}

}  // namespace quarn
