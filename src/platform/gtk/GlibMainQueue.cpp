#include "platform/gtk/GlibMainQueue.h"

#include <glib.h>

#include <cmath>
#include <memory>

namespace ovix::platform::gtk {

namespace {

gboolean runOnce(gpointer data) {
    (*static_cast<std::function<void()>*>(data))();
    return G_SOURCE_REMOVE;
}

void destroyWork(gpointer data) {
    delete static_cast<std::function<void()>*>(data);
}

void post(double seconds, std::function<void()> work) {
    const auto ms = seconds > 0 ? static_cast<guint>(std::lround(seconds * 1000.0)) : 0u;
    // One timeout source per item on the default context: thread-safe to add, and sources of equal
    // priority and due time are dispatched in the order they were attached.
    g_timeout_add_full(G_PRIORITY_DEFAULT, ms, runOnce, new std::function<void()>(std::move(work)),
                       destroyWork);
}

}  // namespace

GlibMainQueue::GlibMainQueue() : mainThread_(std::this_thread::get_id()), start_(g_get_monotonic_time()) {}

void GlibMainQueue::async(std::function<void()> work) {
    post(0, std::move(work));
}

void GlibMainQueue::asyncAfter(double seconds, std::function<void()> work) {
    post(seconds, std::move(work));
}

bool GlibMainQueue::isMainThread() const {
    return std::this_thread::get_id() == mainThread_;
}

double GlibMainQueue::now() const {
    return static_cast<double>(g_get_monotonic_time() - start_) / 1e6;
}

}  // namespace ovix::platform::gtk
