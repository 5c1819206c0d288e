#pragma once

namespace httplib {
struct Request;
}

namespace ovix::emulator {

/// Ends the connection a request arrived on, from inside its handler (find the socket, then shut it down), so
/// that the client receives no answer at all: a dropped connection.
///
/// The server library gives a handler no socket; this finds it (the TLS session's, or on Linux the
/// process's socket whose two ends match the request's addresses) and shuts it down both ways. The
/// library then fails to write the answer and closes the socket itself. Handler thread.
class ConnectionCloser {
  public:
    /// The socket `request` arrived on; -1 when it cannot be found (the caller then answers normally).
    static int socketOf(const httplib::Request& request);
    /// Shuts `socket` down both ways; false when the system refused.
    static bool shutDown(int socket);
};

}  // namespace ovix::emulator
