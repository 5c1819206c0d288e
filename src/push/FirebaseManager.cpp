#include "push/FirebaseManager.h"

namespace ovix {

FirebaseManager& FirebaseManager::shared() {
    static FirebaseManager instance;
    return instance;
}

// Connected to the push client and notification centre by the push manager's own change.
void FirebaseManager::configure() {}

}  // namespace ovix
