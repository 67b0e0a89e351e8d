// The random part as standard deviations and correlations.
#pragma once

#include <memory>

#include "output/document.h"

namespace hierfit::report {

/// Of a table of random effect covariances the standard deviations, square roots of its diagonal,
/// and below the diagonal the correlations, each covariance divided by the standard deviations of
/// its two effects (Pinheiro and Bates, 2000, section 2.4). Its caption says that they are worked
/// out by the report, names the smallest eigenvalue of the covariances, and says so when that is 0
/// to within rounding, so that the estimate lies on the boundary of what covariances can be. Null
/// for a table that is no square of numbers, or has more than 50 effects.
std::unique_ptr<output::Table> random_part_of(const output::Table& covariances,
                                              const output::Document& document);

}  // namespace hierfit::report
