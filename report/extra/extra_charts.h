// Charts and tables that the report makes of the tables of a document.
#pragma once

#include "output/document.h"

namespace hierfit::report {

/// Adds a last heading with the standard deviations and correlations of each table of random effect
/// covariances, which are worked out, a forest plot of the fixed coefficients, one of their
/// exponentials along an axis of logarithms where the table has them, and one of each table of
/// contrasts: estimates with their intervals and significances. Numbers of the charts are those of
/// the tables, bit for bit. Nothing is added to a document without such tables.
void add_extra_charts(output::Document& document);

}  // namespace hierfit::report
