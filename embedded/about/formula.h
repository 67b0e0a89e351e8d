// The model as a formula.
#pragma once

#include <string>

#include "embedded/about/result_facts.h"

namespace hierfit::about {

/// The model that the settings of a result document ask for, in the notation of Wilkinson and
/// Rogers with random terms in parentheses, by the names of the fields: "y ~ a * b" is written out
/// as "y ~ a + b + a:b", A within B is "A(B)", a square "x^2", events out of trials
/// "events/trials", a block of random effects "(1 + x | subject:class)". Without an intercept "0 +"
/// stands ahead. Empty without a target.
std::string formula_of(const ResultFacts& facts);

/// An effect or a subject specification: its fields joined by `joint`, those nested in others with
/// them in parentheses.
std::string joined(const Fields& fields, std::string_view joint);

}  // namespace hierfit::about
