// The counted reference behind every host handle.
#pragma once

#include <memory>

/// A reference that keeps what it names alive until the last copy goes. Handles of the pivot
/// library copy by this reference: a copied handle means the same object.
template <class T>
using RefCountPtr = std::shared_ptr<T>;
