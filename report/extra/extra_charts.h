// Charts that the report makes of the tables of a document.
#pragma once

#include "output/document.h"

namespace hierfit::report {

/// Adds a last heading with a forest plot of the fixed coefficients, one of their exponentials
/// along an axis of logarithms where the table has them, and one of each table of contrasts:
/// estimates with their intervals and significances. Numbers are those of the tables, bit for bit.
/// Nothing is added to a document without such tables.
void add_extra_charts(output::Document& document);

}  // namespace hierfit::report
