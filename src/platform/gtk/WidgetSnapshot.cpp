#include "platform/gtk/WidgetSnapshot.h"

namespace ovix::platform::gtk {

bool writeWidgetSnapshot(GtkWidget* window, const std::filesystem::path& path) {
    const int width = gtk_widget_get_width(window);
    const int height = gtk_widget_get_height(window);
    GskRenderer* renderer = gtk_native_get_renderer(GTK_NATIVE(window));
    if (width <= 0 || height <= 0 || renderer == nullptr) {
        return false;
    }
    GdkPaintable* paintable = gtk_widget_paintable_new(window);
    GtkSnapshot* snapshot = gtk_snapshot_new();
    gdk_paintable_snapshot(paintable, snapshot, width, height);
    GskRenderNode* node = gtk_snapshot_free_to_node(snapshot);
    bool written = false;
    if (node != nullptr) {
        // graphene_rect_init, not GRAPHENE_RECT_INIT: the macro is a C compound literal, which
        // -Wpedantic rejects in C++.
        graphene_rect_t viewport;
        graphene_rect_init(&viewport, 0, 0, static_cast<float>(width), static_cast<float>(height));
        GdkTexture* texture = gsk_renderer_render_texture(renderer, node, &viewport);
        written = gdk_texture_save_to_png(texture, path.c_str());
        g_object_unref(texture);
        gsk_render_node_unref(node);
    }
    g_object_unref(paintable);
    return written;
}

}  // namespace ovix::platform::gtk
