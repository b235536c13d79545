// The registry of this process: the file that the library reads here. Children inherit it.
#include "support/RegistrySandbox.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ios>
#include <stdexcept>
#include <system_error>

#include "support/Platform.h"

namespace fs = std::filesystem;

namespace {

std::string fileOf(const std::wstring& key) { return {key.begin(), key.end()}; }

}  // namespace

RegistrySandbox::RegistrySandbox() {
    static std::atomic<int> count{0};
    key_ = (fs::temp_directory_path() /
            ("qxb-registry-" + std::to_string(ownProcessId()) + "-" + std::to_string(++count)))
               .wstring();
    std::ofstream(fileOf(key_), std::ios::trunc);
    ::setenv("QX_REGISTRY", fileOf(key_).c_str(), /*replace=*/1);
}

RegistrySandbox::~RegistrySandbox() {
    ::unsetenv("QX_REGISTRY");
    std::error_code ignored;
    fs::remove(fileOf(key_), ignored);
}

void RegistrySandbox::set(std::string_view name, std::string_view text) {
    std::ofstream file(fileOf(key_), std::ios::app | std::ios::binary);
    file << "HKLM\\SOFTWARE\\Vantrel_nvo\\" << name << '=' << text << '\n';
    if (!file.flush()) throw std::runtime_error("cannot write the registry's file");
}
