// DynamicLibrary.cpp - dlopen, dlsym and dlclose with their error texts kept
#include <dlfcn.h>
#include <quarn/core/DynamicLibrary.h>
#include <quarnCore/Unicode.h>

namespace quarn {

DynamicLibrary::DynamicLibrary(char const *path) {
  if (path) open(path);
}

DynamicLibrary::~DynamicLibrary() { close(); }

bool DynamicLibrary::open(char const *path, bool) {
  close();
  m_path = path;
  for (unsigned int i = 0; i < m_path.getLength(); ++i)
    if (m_path.getBuffer()[i] == '\\') m_path.getBuffer()[i] = '/';
  dlerror();  // forget any earlier failure, so that the text below is this one's
  if (!m_path.isEmpty()) m_module = dlopen(m_path.getBuffer(), RTLD_NOW);
  if (!m_module) {
    BaseString<unsigned short> text("Failed to load dynamic library ");
    BaseString<unsigned short> widePath;
    util::ConvertUTF8toString(widePath, m_path);
    text.append(widePath);
    HandleError(text.getBuffer());
  }
  return m_module != nullptr;
}

void DynamicLibrary::close() {
  if (!m_module) return;
  void *module = m_module;
  m_module = nullptr;
  dlerror();
  if (dlclose(module) != 0) HandleError(BaseString<unsigned short>("Error closing dynamic library").getBuffer());
}

void *DynamicLibrary::getSymbol(char const *name) {
  if (!m_module || !name) return nullptr;
  return dlsym(m_module, name);
}

void DynamicLibrary::HandleError(unsigned short const *text) {
  m_errorMessage = text;
  if (char const *reason = dlerror()) {
    BaseString<unsigned short> wide;
    util::ConvertUTF8toString(wide, reason);
    m_errorMessage.appendAscii(": ").append(wide);
  }
}

}  // namespace quarn
