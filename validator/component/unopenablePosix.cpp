#include <string>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "validator/component/unopenable.h"

namespace validator {

bool makeUnopenable(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string text = path.string();
    if (text.size() >= sizeof address.sun_path) return false;
    text.copy(address.sun_path, text.size());
    const int made = socket(AF_UNIX, SOCK_STREAM, 0);
    if (made < 0) return false;
    const int status = bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    close(made);
    return status == 0;
}

}  // namespace validator
