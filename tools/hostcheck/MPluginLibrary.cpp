// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/hostcheck/MPluginLibrary.h"

#include "core/MException.h"
#include "core/MFormat.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

#if defined(_WIN32)

void* Open(const std::string& path) { return LoadLibraryA(path.c_str()); }
void Close(void* handle) { FreeLibrary(static_cast<HMODULE>(handle)); }
void* Symbol(void* handle, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
}
std::string LastError() { return MFormat("error {0}", static_cast<int>(GetLastError())); }

#else

void* Open(const std::string& path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }
void Close(void* handle) { dlclose(handle); }
void* Symbol(void* handle, const char* name) { return dlsym(handle, name); }
std::string LastError() {
    const char* text = dlerror();
    return text == nullptr ? "" : text;
}

#endif

}  // namespace

MPluginLibrary::MPluginLibrary(const std::string& path) : path_(path), handle_(Open(path)) {
    if (handle_ == nullptr) throw MException(MFormat("cannot load {0}: {1}", path, LastError()));
}

MPluginLibrary::~MPluginLibrary() { Close(handle_); }

void* MPluginLibrary::Find(const char* name) const noexcept { return Symbol(handle_, name); }

MPluginLibrary::Vst2Entry MPluginLibrary::FindVst2Entry() const {
    for (const char* name : {"VSTPluginMain", "main"}) {
        if (void* entry = Find(name)) return reinterpret_cast<Vst2Entry>(entry);
    }
    throw MException(MFormat("{0} is no VST 2.4 plug-in: it has no entry", path_));
}
