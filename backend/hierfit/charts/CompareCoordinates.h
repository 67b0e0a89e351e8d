// The roles of the coordinates of a table of contrasts.
#pragma once

#include <cstddef>

#include "backend/hierfit/store/Emmeans.h"

/// The compared factor has the last two coordinates. Of the other factors the first two make the
/// panels of a chart.
struct CompareCoordinates {
  const CoordinatesData* second = nullptr;  ///< second member of each contrast
  const CoordinatesData* first = nullptr;   ///< first member of each contrast
  const CoordinatesData* facet1 = nullptr;  ///< null when there is no other factor
  const CoordinatesData* facet2 = nullptr;  ///< null when there are fewer than two
};

/// The roles in a table that has at least two coordinates.
inline CompareCoordinates CompareCoordinatesOf(const EmmeansContrastData& contrasts) {
  const std::vector<CoordinatesData>& coordinates = contrasts.fvCoordinates;
  const std::size_t count = coordinates.size();
  return {.second = &coordinates[count - 1],
          .first = &coordinates[count - 2],
          .facet1 = count >= 3 ? &coordinates[0] : nullptr,
          .facet2 = count >= 4 ? &coordinates[1] : nullptr};
}
