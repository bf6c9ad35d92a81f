#pragma once
// A C++ object that lives as long as a GObject it belongs to: made from the object on
// first use, deleted when the object is finalized.
#include <glib-object.h>

template <class T, class Object>
T& attached(Object* object, const char* key)
{
    auto* value = static_cast<T*>(g_object_get_data(G_OBJECT(object), key));
    if (!value) {
        value = new T(object);
        g_object_set_data_full(G_OBJECT(object), key, value, [](gpointer data) { delete static_cast<T*>(data); });
    }
    return *value;
}
