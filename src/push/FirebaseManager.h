#pragma once

namespace ovix {

/// The push-messaging manager: configures the push client, asks for notification permission,
/// subscribes the topic on every registration token.
class FirebaseManager {
public:
    static FirebaseManager& shared();
    /// Sets everything up; meant to be called once per `initSdk`.
    void configure();

private:
    FirebaseManager() = default;
};

}  // namespace ovix
