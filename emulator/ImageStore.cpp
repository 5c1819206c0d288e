#include "emulator/ImageStore.h"

#include <openssl/rand.h>

#include <array>
#include <fstream>
#include <sstream>

namespace ovix::emulator {

ImageStore::ImageStore(std::filesystem::path directory) : directory_(std::move(directory)) {
    std::filesystem::create_directories(directory_);
}

bool ImageStore::isId(std::string_view id) {
    if (id.size() != 32) {
        return false;
    }
    for (char c : id) {
        if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) {
            return false;
        }
    }
    return true;
}

std::optional<std::string> ImageStore::store(std::string_view bytes) {
    std::array<unsigned char, 16> random{};
    {
        std::lock_guard lock(mutex_);
        if (RAND_bytes(random.data(), static_cast<int>(random.size())) != 1) {
            return std::nullopt;
        }
    }
    static constexpr char kHex[] = "0123456789abcdef";
    std::string id;
    for (unsigned char byte : random) {
        id += kHex[byte >> 4];
        id += kHex[byte & 0xf];
    }
    const auto final = directory_ / (id + ".jpg");
    const auto temporary = directory_ / (id + ".part");
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush()) {
            return std::nullopt;
        }
    }
    std::error_code error;
    std::filesystem::rename(temporary, final, error);
    if (error) {
        std::filesystem::remove(temporary, error);
        return std::nullopt;
    }
    return id;
}

std::optional<std::string> ImageStore::load(std::string_view id) const {
    if (!isId(id)) {
        return std::nullopt;
    }
    std::ifstream in(directory_ / (std::string(id) + ".jpg"), std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

}  // namespace ovix::emulator
