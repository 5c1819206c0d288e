#include "platform/linux/LinuxDeviceFacts.h"

#include <ifaddrs.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <sstream>
#include <system_error>

namespace ovix::platform {

namespace fs = std::filesystem;

namespace {

// Fixed for this SDK: the vendor identifier is the machine id seen through this key, so it is stable
// per machine yet does not reveal the machine id itself.
constexpr std::string_view kVendorKey = "ovix-sdk:identifierForVendor:4f1c9a2e";

std::string trim(std::string_view s) {
    const auto first = s.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) {
        return "";
    }
    const auto last = s.find_last_not_of(" \t\r\n");
    return std::string(s.substr(first, last - first + 1));
}

std::string firstLine(std::string_view s) {
    return trim(s.substr(0, s.find('\n')));
}

// Value of a shell-style assignment: double quotes (with \" \\ \$ \` escapes), single quotes and
// backslash escapes as a shell would read them.
std::string unquote(std::string_view raw) {
    std::string out;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        char c = raw[i];
        if (c == '"') {
            for (++i; i < raw.size() && raw[i] != '"'; ++i) {
                if (raw[i] == '\\' && i + 1 < raw.size() &&
                    std::string_view("\"\\$`").find(raw[i + 1]) != std::string_view::npos) {
                    ++i;
                }
                out += raw[i];
            }
        } else if (c == '\'') {
            for (++i; i < raw.size() && raw[i] != '\''; ++i) {
                out += raw[i];
            }
        } else if (c == '\\' && i + 1 < raw.size()) {
            out += raw[++i];
        } else {
            out += c;
        }
    }
    return out;
}

// KEY=value lines of files such as os-release and machine-info; comments and blank lines skipped.
std::map<std::string, std::string, std::less<>> assignments(std::string_view text) {
    std::map<std::string, std::string, std::less<>> out;
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        std::string t = trim(line);
        auto eq = t.find('=');
        if (t.empty() || t[0] == '#' || eq == std::string::npos) {
            continue;
        }
        out.insert_or_assign(trim(std::string_view(t).substr(0, eq)),
                             unquote(trim(std::string_view(t).substr(eq + 1))));
    }
    return out;
}

bool isMachineId(std::string_view id) {
    if (id.size() != 32) {
        return false;
    }
    for (char c : id) {
        if (!std::isxdigit(static_cast<unsigned char>(c))) {
            return false;
        }
    }
    return true;
}

std::string uuidText(std::string_view bytes) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    for (std::size_t i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            out += '-';
        }
        auto b = static_cast<unsigned char>(bytes[i]);
        out += kHex[b >> 4];
        out += kHex[b & 15];
    }
    return out;
}

// The zone named by a path such as "/usr/share/zoneinfo/Asia/Ho_Chi_Minh"; "" when it names none.
std::string zoneFromPath(std::string_view path) {
    constexpr std::string_view kMarker = "zoneinfo/";
    auto at = path.rfind(kMarker);
    if (at == std::string_view::npos) {
        return "";
    }
    auto zone = path.substr(at + kMarker.size());
    // Zone files also live under "posix/" and "right/" variants of the same names.
    for (std::string_view prefix : {"posix/", "right/"}) {
        if (zone.starts_with(prefix)) {
            zone.remove_prefix(prefix.size());
        }
    }
    return std::string(zone);
}

struct IfaddrsFree {
    void operator()(ifaddrs* list) const { freeifaddrs(list); }
};

}  // namespace

LinuxDeviceFacts::LinuxDeviceFacts(std::shared_ptr<const Crypto> crypto)
    : LinuxDeviceFacts(std::move(crypto), Sources{}) {}

LinuxDeviceFacts::LinuxDeviceFacts(std::shared_ptr<const Crypto> crypto, Sources sources)
    : crypto_(std::move(crypto)), sources_(std::move(sources)) {}

void LinuxDeviceFacts::setScreenSource(std::function<ScreenFacts()> source) {
    std::lock_guard lock(screenMutex_);
    screenSource_ = std::move(source);
}

std::optional<std::string> LinuxDeviceFacts::readFile(const fs::path& relative) const {
    std::ifstream in(sources_.root / relative, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) {
        return std::nullopt;
    }
    return text;
}

std::optional<std::string> LinuxDeviceFacts::env(const std::string& name) const {
    if (sources_.environment) {
        return sources_.environment(name);
    }
    const char* value = std::getenv(name.c_str());
    return value ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<std::string> LinuxDeviceFacts::osRelease(const std::string& key) const {
    auto text = readFile("etc/os-release");
    if (!text) {
        text = readFile("usr/lib/os-release");
    }
    if (!text) {
        return std::nullopt;
    }
    auto all = assignments(*text);
    auto it = all.find(key);
    return it == all.end() ? std::nullopt : std::optional<std::string>(it->second);
}

std::string LinuxDeviceFacts::vendorIdentifier() const {
    auto id = readFile("etc/machine-id");
    std::string machineId = id ? firstLine(*id) : "";
    if (!isMachineId(machineId) || !crypto_) {
        return "";
    }
    // The same machine id in either case is the same machine.
    for (char& c : machineId) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    std::string digest = crypto_->hmacSha256(kVendorKey, machineId);
    if (digest.size() < 16) {
        return "";
    }
    // Shaped as a version-4, RFC 4122 variant UUID, like any other vendor identifier.
    digest[6] = static_cast<char>((digest[6] & 0x0F) | 0x40);
    digest[8] = static_cast<char>((digest[8] & 0x3F) | 0x80);
    return uuidText(digest);
}

std::string LinuxDeviceFacts::deviceName() const {
    if (auto info = readFile("etc/machine-info")) {
        auto all = assignments(*info);
        if (auto it = all.find("PRETTY_HOSTNAME"); it != all.end() && !trim(it->second).empty()) {
            return trim(it->second);
        }
    }
    for (const char* file : {"proc/sys/kernel/hostname", "etc/hostname"}) {
        if (auto name = readFile(file); name && !firstLine(*name).empty()) {
            return firstLine(*name);
        }
    }
    return "";
}

std::string LinuxDeviceFacts::model() const {
    auto product = readFile("sys/class/dmi/id/product_name");
    std::string name = product ? firstLine(*product) : "";
    return name.empty() ? "PC" : name;
}

std::string LinuxDeviceFacts::localizedModel() const {
    return model();
}

std::string LinuxDeviceFacts::systemName() const {
    auto name = osRelease("NAME");
    return name && !name->empty() ? *name : "Linux";
}

std::string LinuxDeviceFacts::systemVersion() const {
    return osRelease("VERSION_ID").value_or("");
}

std::vector<std::string> LinuxDeviceFacts::carrierNames() const {
    return {};
}

std::string LinuxDeviceFacts::localeIdentifier() const {
    std::string locale;
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (auto value = env(name); value && !value->empty()) {
            locale = *value;
            break;
        }
    }
    locale = locale.substr(0, locale.find_first_of(".@"));
    if (locale.empty() || locale == "C" || locale == "POSIX") {
        return "en_US_POSIX";
    }
    return locale;
}

std::string LinuxDeviceFacts::timeZoneIdentifier() const {
    if (auto tz = env("TZ"); tz && !tz->empty()) {
        std::string_view zone = *tz;
        if (zone.front() == ':') {
            zone.remove_prefix(1);
        }
        auto named = zoneFromPath(zone);
        return named.empty() ? std::string(zone) : named;
    }
    if (auto file = readFile("etc/timezone"); file && !firstLine(*file).empty()) {
        return firstLine(*file);
    }
    std::error_code ec;
    const fs::path localtime = sources_.root / "etc/localtime";
    auto target = fs::read_symlink(localtime, ec);
    if (!ec) {
        return zoneFromPath(target.generic_string());
    }
    // Without a local-time file the C library keeps time in UTC.
    return fs::exists(fs::symlink_status(localtime, ec)) ? "" : "UTC";
}

ScreenFacts LinuxDeviceFacts::screen() const {
    std::function<ScreenFacts()> source;
    {
        std::lock_guard lock(screenMutex_);
        source = screenSource_;
    }
    return source ? source() : ScreenFacts{0, 0, 1};
}

std::string LinuxDeviceFacts::primaryInterfaceName() const {
    auto table = readFile("proc/net/route");
    if (!table) {
        return "";
    }
    std::istringstream lines(*table);
    std::string line;
    std::getline(lines, line);  // column titles
    std::string best;
    unsigned long bestMetric = std::numeric_limits<unsigned long>::max();
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string iface, destination, gateway, flags, refCount, use, metric, mask;
        if (!(fields >> iface >> destination >> gateway >> flags >> refCount >> use >> metric >> mask)) {
            continue;
        }
        constexpr unsigned long kRouteUp = 0x1;
        const bool isDefault = destination == "00000000" && mask == "00000000";
        const bool up = (std::strtoul(flags.c_str(), nullptr, 16) & kRouteUp) != 0;
        const unsigned long m = std::strtoul(metric.c_str(), nullptr, 10);
        if (isDefault && up && (best.empty() || m < bestMetric)) {
            best = iface;
            bestMetric = m;
        }
    }
    return best;
}

std::optional<std::vector<InterfaceAddress>> LinuxDeviceFacts::interfaceAddresses() const {
    ifaddrs* raw = nullptr;
    if (getifaddrs(&raw) != 0) {
        return std::nullopt;
    }
    std::unique_ptr<ifaddrs, IfaddrsFree> list(raw);  // released on every path
    std::vector<InterfaceAddress> out;
    for (ifaddrs* entry = list.get(); entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr) {
            continue;
        }
        InterfaceAddress address;
        address.name = entry->ifa_name ? entry->ifa_name : "";
        socklen_t length = 0;
        switch (entry->ifa_addr->sa_family) {
            case AF_INET:
                address.family = InterfaceAddress::Family::IPv4;
                length = sizeof(sockaddr_in);
                break;
            case AF_INET6:
                address.family = InterfaceAddress::Family::IPv6;
                length = sizeof(sockaddr_in6);
                break;
            default:
                address.family = InterfaceAddress::Family::Other;
                break;
        }
        if (length != 0) {
            char host[NI_MAXHOST] = {};
            // On failure the buffer stays zero-filled: the address reads as "".
            getnameinfo(entry->ifa_addr, length, host, sizeof(host), nullptr, 0, NI_NUMERICHOST);
            address.numericHost = host;
        }
        out.push_back(std::move(address));
    }
    return out;
}

}  // namespace ovix::platform
