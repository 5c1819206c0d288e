#include "push/FirebaseManager.h"

#include "core/Endpoints.h"
#include "core/SessionManager.h"
#include "core/UrlSyntax.h"
#include "ovix/kit/host/Application.h"
#include "ovix/platform/Platform.h"

namespace ovix {

namespace {

constexpr std::string_view kOptionsName = "GoogleService-Info";
constexpr std::string_view kOptionsType = "plist";

// The user-information value under `key` when it is text; anything else counts as absent.
std::string textOrEmpty(const Dictionary& userInfo, std::string_view key) {
    auto it = userInfo.find(key);
    if (it == userInfo.end()) {
        return "";
    }
    const std::string* text = it->second.asString();
    return text ? *text : "";
}

}  // namespace

FirebaseManager& FirebaseManager::shared() {
    // Owned by a shared pointer so that the push client and notification centre can hold it weakly.
    static const std::shared_ptr<FirebaseManager> instance(new FirebaseManager());
    return *instance;
}

void FirebaseManager::configure() {
    auto p = platform::current();
    auto& console = *p->console;
    auto client = p->pushClient;

    if (client->hasDefaultApp()) {
        console.printLine("⚠️ Firebase already configured");
        return;
    }

    auto tryBundle = [&](const platform::Bundle& bundle) {
        auto path = bundle.pathForResource(kOptionsName, kOptionsType);
        return path && client->configure(*path);
    };
    if (tryBundle(p->resources->mainBundle())) {
        console.printLine("✅ Firebase configured with host app GoogleService-Info.plist");
    } else if (const auto code = p->resources->codeBundle();
               tryBundle(code) ||
               (p->sdkBundle().directory() != code.directory() && tryBundle(p->sdkBundle()))) {
        console.printLine("✅ Firebase configured with SDK bundle GoogleService-Info.plist");
    } else {
        console.printLine("❌ GoogleService-Info.plist not found in host app bundle or SDK bundle");
    }

    auto self = weak_from_this();
    client->setDelegate(self);
    p->notificationCenter->setDelegate(self);

    using namespace platform::notification_options;
    p->notificationCenter->requestAuthorization(
        alert | sound | badge,
        [queue = p->mainQueue, application = p->application](bool granted, const auto&) {
            if (granted) {
                queue->async([application] { application->registerForRemoteNotifications(); });
            }
        });
}

std::optional<std::string> FirebaseManager::fcmTokenCache() const {
    std::lock_guard lock(tokenMutex_);
    return fcmTokenCache_;
}

void FirebaseManager::didReceiveRegistrationToken(const std::optional<std::string>& token) {
    if (!token) {
        return;
    }
    {
        std::lock_guard lock(tokenMutex_);
        fcmTokenCache_ = *token;
    }
    platform::current()->console->printLine("📲 FCM Token: " + *token);
    // Every delivery subscribes again, so a refreshed token is on the topic too.
    subscribeToTopic();
}

std::string FirebaseManager::topicName() {
    return Endpoints::shared().topicFirebase + "-" +
           SessionManager::readString(SessionManager::shared().clientIdKey);
}

void FirebaseManager::subscribeToTopic() {
    auto p = platform::current();
    const std::string topic = topicName();
    p->pushClient->subscribe(topic, [console = p->console, topic](std::optional<std::string> error) {
        if (error) {
            console->printLine("❌ Failed to subscribe to topic " + topic + ": " + *error);
        } else {
            console->printLine("✅ Subscribed to topic: " + topic);
        }
    });
}

void FirebaseManager::willPresent(const Dictionary& userInfo,
                                  std::function<void(unsigned options)> completion) {
    handleNotificationData(userInfo);
    using namespace platform::notification_options;
    completion(banner | sound | badge);
}

void FirebaseManager::didReceive(const Dictionary& /*userInfo*/, std::function<void()> completion) {
    // A tapped notification opens nothing: only a foreground one follows its link.
    completion();
}

void FirebaseManager::handleNotificationData(const Dictionary& userInfo) {
    const std::string url = textOrEmpty(userInfo, "url");
    const std::string reward = textOrEmpty(userInfo, "reward");
    const std::string type = textOrEmpty(userInfo, "type");
    const std::string icon = textOrEmpty(userInfo, "icon");

    auto p = platform::current();
    p->console->printLine("Notification Data - reward: " + reward + ", type: " + type + ", icon: " + icon +
                          ", url: " + url);
    if (isValidUrl(url)) {
        p->mainQueue->async([application = p->application, url] { application->open(url); });
    }
}

bool FirebaseManager::isValidUrl(std::string_view text) {
    const auto colon = UrlSyntax::schemeEnd(text);
    if (colon == std::string_view::npos || colon + 1 == text.size()) {
        return false;
    }
    for (std::size_t i = colon + 1; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (!UrlSyntax::isEscapeAt(text, i)) {
                return false;
            }
            i += 2;
        } else if (!UrlSyntax::isUriCharacter(text[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace ovix
