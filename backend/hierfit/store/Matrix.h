// A matrix unpacked into full rows: the `Matrix` element.
#pragma once

#include <cstdint>
#include <vector>

#include "host/framework.h"

/// One row of a matrix.
struct MatrixRowData {
  std::vector<double>
      fvValues;          ///< as long as the matrix has rows; 0 where the document has nothing
  double fRowTotal = 0;  ///< the sum of the values that the document has
};

/// A matrix of `fNbRows` rows. The labels, which rows and columns share, are values of the target;
/// there may be none, or fewer than rows.
struct MatrixData {
  int32_t fNbRows = 0;
  std::vector<CFStatVariableValue> fvRowColLabels;
  std::vector<MatrixRowData> fvRows;
};

/// The classification table: observed categories in rows, predicted ones in columns.
using ClassifMatrixData = MatrixData;
