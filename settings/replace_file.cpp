#include "replace_file.h"

#include <unistd.h>

#include <fstream>
#include <system_error>

namespace moremate {

bool ReplaceFile(const std::filesystem::path& path, const std::string& content) {
    std::filesystem::path temporary = path;
    temporary += ".tmp." + std::to_string(getpid());
    std::error_code error;
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out.write(content.data(), static_cast<std::streamsize>(content.size())).flush()) {
            std::filesystem::remove(temporary, error);
            return false;
        }
    }
    std::filesystem::rename(temporary, path, error);
    if (!error) return true;
    std::filesystem::remove(temporary, error);
    return false;
}

}  // namespace moremate
