#include "emulator/AdminRoutes.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <stdexcept>

#include "emulator/BackendRoutes.h"
#include "emulator/FaultInjector.h"
#include "emulator/RequestLog.h"

namespace ovix::emulator {

namespace {

using nlohmann::json;
using Handler = std::function<void(const httplib::Request&, httplib::Response&)>;

void answer(httplib::Response& response, int status, const json& body) {
    response.status = status;
    response.set_content(body.dump(2, ' ', false, json::error_handler_t::replace) + "\n", "application/json");
}

// Refuses clients that are not on this machine before running `handler`.
httplib::Server::Handler guarded(Handler handler) {
    return [handler = std::move(handler)](const httplib::Request& request, httplib::Response& response) {
        if (!AdminRoutes::isLoopback(request.remote_addr)) {
            answer(response, 403, {{"Message", "The admin endpoint answers loopback clients only"}});
            return;
        }
        handler(request, response);
    };
}

Fault faultFromBody(const std::string& body) {
    const json parsed = json::parse(body, nullptr, false);
    return parsed.is_discarded() ? Fault::parse(body) : Fault::fromJson(parsed);
}

}  // namespace

AdminRoutes::AdminRoutes(FaultInjector& faults, RequestLog& log, BackendRoutes& backend, std::string caPem)
    : faults_(faults), log_(log), backend_(backend), caPem_(std::move(caPem)) {}

bool AdminRoutes::isLoopback(const std::string& address) {
    return address.starts_with("127.") || address == "::1" || address.starts_with("::ffff:127.");
}

void AdminRoutes::install(httplib::Server& server) {
    const std::string base(prefix);
    server.Get(base + "/log", guarded([this](const httplib::Request& request, httplib::Response& response) {
                   json entries = json::array();
                   for (const auto& entry : log_.entries(request.get_param_value("route"))) {
                       entries.push_back(entry.toJson());
                   }
                   answer(response, 200, {{"entries", entries}});
               }));
    server.Delete(base + "/log", guarded([this](const httplib::Request&, httplib::Response& response) {
                      log_.clear();
                      response.status = 204;
                  }));
    server.Get(base + "/faults", guarded([this](const httplib::Request&, httplib::Response& response) {
                   json faults = json::object();
                   for (const auto& [route, fault] : faults_.snapshot()) {
                       faults[route] = fault.toJson();
                   }
                   answer(response, 200, faults);
               }));
    server.Put(base + "/faults/([a-z]+)",
               guarded([this](const httplib::Request& request, httplib::Response& response) {
                   try {
                       const auto fault = faultFromBody(request.body);
                       faults_.set(request.matches[1].str(), fault);
                       answer(response, 200, {{request.matches[1].str(), fault.toJson()}});
                   } catch (const std::invalid_argument& error) {
                       answer(response, 400, {{"Message", error.what()}});
                   }
               }));
    server.Delete(base + "/faults(?:/([a-z]+))?",
                  guarded([this](const httplib::Request& request, httplib::Response& response) {
                      if (request.matches[1].matched) {
                          response.status = faults_.clear(request.matches[1].str()) ? 204 : 404;
                      } else {
                          faults_.clearAll();
                          response.status = 204;
                      }
                  }));
    server.Get(base + "/devices", guarded([this](const httplib::Request&, httplib::Response& response) {
                   json devices = json::object();
                   for (const auto& [client, record] : backend_.deviceRecords()) {
                       devices[client] = record;
                   }
                   answer(response, 200, devices);
               }));
    server.Get(base + "/ca.pem", guarded([this](const httplib::Request&, httplib::Response& response) {
                   if (caPem_.empty()) {
                       answer(response, 404, {{"Message", "The emulator runs without TLS"}});
                       return;
                   }
                   response.set_content(caPem_, "application/x-pem-file");
               }));
}

}  // namespace ovix::emulator
