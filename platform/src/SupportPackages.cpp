#include <SupportPackageRootReader.hpp>
#include <install/product_impl/utils/HardwareSupportPackages.hpp>

#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <string>

namespace {

std::mutex& rootMutex() {
    static std::mutex m;
    return m;
}

std::u16string& configuredRoot() {
    static std::u16string root;
    return root;
}

std::string& configuredFailure() {
    static std::string failure;
    return failure;
}

} // namespace

std::u16string SupportPackageRootReader::getSupportPackageRootNoCreate() const {
    std::lock_guard lock(rootMutex());
    if (!configuredFailure().empty()) {
        throw std::runtime_error(configuredFailure());
    }
    return configuredRoot();
}

void SupportPackageRootReader::setFailure(std::string message) {
    std::lock_guard lock(rootMutex());
    configuredFailure() = std::move(message);
}

void SupportPackageRootReader::setSupportPackageRoot(std::u16string root) {
    std::lock_guard lock(rootMutex());
    configuredRoot() = std::move(root);
}

namespace install::product_impl::utils {

std::unordered_set<std::u16string> getInstalledHardwareSupportPackages(const std::u16string& root) {
    std::unordered_set<std::u16string> names;
    if (root.empty()) {
        return names;
    }
    // The throwing overloads: a missing or unreadable root reports filesystem_error.
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(root))) {
        if (entry.is_directory()) {
            names.insert(entry.path().filename().u16string());
        }
    }
    return names;
}

} // namespace install::product_impl::utils
