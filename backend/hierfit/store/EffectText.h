// The text of a model effect, as in "a * b(c)", whatever its fields are called.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "backend/hierfit/store/BuildSettings.h"

/// The text of the field at a position of an effect.
using EffectFieldText = std::function<std::string_view(std::size_t field)>;

/// Joins the fields of an effect: a field that is nested deeper than all before it opens a
/// parenthesis, which stays open to the end, any other follows " * ". Empty for an effect without
/// fields. `fieldText` is asked for positions within `fvVarIndices`, in their order.
std::string JoinEffectFields(const EffectStruct& effect, const EffectFieldText& fieldText);
