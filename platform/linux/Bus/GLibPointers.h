// Owning pointers to reference-counted GLib objects.
#pragma once

#include <gio/gio.h>

#include <memory>

namespace quillon {

struct GLibRelease {
  void operator()(GCancellable* cancellable) const { g_object_unref(cancellable); }
  void operator()(GDBusConnection* connection) const { g_object_unref(connection); }
  void operator()(GIOStream* stream) const { g_object_unref(stream); }
  void operator()(GFile* file) const { g_object_unref(file); }
  void operator()(GError* error) const { g_error_free(error); }
  void operator()(GMainContext* context) const { g_main_context_unref(context); }
  void operator()(GSettings* settings) const { g_object_unref(settings); }
  void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
  // Also removes an active source from its context.
  void operator()(GSource* source) const {
    g_source_destroy(source);
    g_source_unref(source);
  }
  void operator()(char* text) const { g_free(text); }
};

template <class T>
using GLibPointer = std::unique_ptr<T, GLibRelease>;

}  // namespace quillon
