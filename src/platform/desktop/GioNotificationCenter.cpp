#include "platform/desktop/GioNotificationCenter.h"

#include <gio/gio.h>

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform::desktop {

namespace {

std::string text(const Dictionary& userInfo, const char* key) {
    auto it = userInfo.find(key);
    if (it == userInfo.end()) {
        return {};
    }
    const auto* s = it->second.asString();
    return s ? *s : std::string();
}

using WeakCenter = std::weak_ptr<GioNotificationCenter>;

void onTapped(GSimpleAction*, GVariant* parameter, gpointer data) {
    if (auto center = static_cast<WeakCenter*>(data)->lock()) {
        center->activated(g_variant_get_string(parameter, nullptr));
    }
}

void dropWeak(gpointer data, GClosure*) {
    delete static_cast<WeakCenter*>(data);
}

}  // namespace

GioNotificationCenter::GioNotificationCenter(std::shared_ptr<Console> console)
    : console_(std::move(console)) {}

void GioNotificationCenter::getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) {
    completion(g_application_get_default() ? AuthorizationStatus::Authorized : AuthorizationStatus::Denied);
}

void GioNotificationCenter::requestAuthorization(
    unsigned, std::function<void(bool, std::optional<std::string>)> completion) {
    if (g_application_get_default()) {
        completion(true, std::nullopt);
    } else {
        completion(false, unsupported::message("Notifications"));
    }
}

void GioNotificationCenter::setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) {
    std::lock_guard lock(mutex_);
    delegate_ = std::move(delegate);
}

std::shared_ptr<NotificationCenterDelegate> GioNotificationCenter::delegate() const {
    std::lock_guard lock(mutex_);
    return delegate_.lock();
}

void GioNotificationCenter::deliver(const Dictionary& userInfo) {
    if (!g_application_get_default()) {
        unsupported::report("Notifications");
        return;
    }
    auto shown = [weak = weak_from_this(), userInfo](unsigned options) {
        using namespace notification_options;
        auto self = weak.lock();
        if (self && (options & (alert | banner | list)) != 0) {
            self->send(userInfo);
        }
    };
    if (auto d = delegate()) {
        d->willPresent(userInfo, std::move(shown));
    } else {
        shown(0);  // no delegate: nothing shows in the foreground
    }
}

void GioNotificationCenter::send(const Dictionary& userInfo) {
    // GApplication is not thread-safe: sending belongs to the main context.
    auto* work = new std::function<void()>([weak = weak_from_this(), userInfo] {
        auto self = weak.lock();
        GApplication* app = g_application_get_default();
        if (!self || !app) {
            return;
        }
        self->ensureTapAction();
        GNotification* notification = g_notification_new(text(userInfo, "title").c_str());
        g_notification_set_body(notification, text(userInfo, "body").c_str());
        const std::string payload = Value(userInfo).toJson();
        g_notification_set_default_action_and_target(notification, (std::string("app.") + tapAction).c_str(),
                                                     "s", payload.c_str());
        g_application_send_notification(app, nullptr, notification);
        g_object_unref(notification);
    });
    g_main_context_invoke_full(
        nullptr, G_PRIORITY_DEFAULT,
        [](gpointer data) {
            (*static_cast<std::function<void()>*>(data))();
            return G_SOURCE_REMOVE;
        },
        work, [](gpointer data) { delete static_cast<std::function<void()>*>(data); });
}

void GioNotificationCenter::ensureTapAction() {
    GApplication* app = g_application_get_default();
    if (g_action_map_lookup_action(G_ACTION_MAP(app), tapAction) != nullptr) {
        return;
    }
    GSimpleAction* action = g_simple_action_new(tapAction, G_VARIANT_TYPE_STRING);
    // Held weakly: the application may outlive the platform that added the action.
    g_signal_connect_data(action, "activate", G_CALLBACK(onTapped), new WeakCenter(weak_from_this()),
                          dropWeak, GConnectFlags{});
    g_action_map_add_action(G_ACTION_MAP(app), G_ACTION(action));
    g_object_unref(action);
}

void GioNotificationCenter::activated(const std::string& payloadJson) {
    auto value = Value::fromJson(payloadJson);
    const Dictionary* userInfo = value ? value->asObject() : nullptr;
    auto d = delegate();
    if (d && userInfo) {
        d->didReceive(*userInfo, [] {});
    }
}

}  // namespace ovix::platform::desktop
