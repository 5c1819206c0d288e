#pragma once

#include <string>

namespace ovix {

/// The backend addresses and push topic, copied once from the installed platform's environment on
/// first use and fixed for the process (install a platform or choose an emulator before that).
///
/// Components build their URLs from here rather than from the facade; the facade's accessors report
/// the same copy. Read-only after creation, so safe from any thread.
class Endpoints {
  public:
    static const Endpoints& shared();

    Endpoints(const Endpoints&) = delete;
    Endpoints& operator=(const Endpoints&) = delete;

    /// Accounts host (login page, user info, eligibility), no trailing slash.
    const std::string urlString;
    /// Graph host (news feed, image upload), no trailing slash.
    const std::string urlGraph;
    /// The push topic's base name.
    const std::string topicFirebase = "games-dev";

  private:
    Endpoints();
};

}  // namespace ovix
