needs <- function(...) for (package in c(...)) skip_if_not_installed(package)
needs_program <- function() skip_if_not(has_program(), "the program hierfit is not there")

# Equal to 9 digits, names aside: two ways to one number.
expect_same <- function(object, expected, tolerance = 1e-9) {
  expect_equal(unname(as.vector(object)), unname(as.vector(expected)), tolerance = tolerance)
}

tidied <- function(x, ...) hierfit:::tidy.hierfit(x, ...)

expect_coefficients <- function(x, table, tolerance = 1e-9) {
  rows <- tidied(x)
  expect_same(rows$estimate, table[, 1], tolerance)
  expect_same(rows$std.error, table[, 2], tolerance)
  invisible(rows)
}

# Wald tests of type III from a refit whose factors are coded by sums.
wald_by_sums <- function(fit, position, coef = stats::coef, vcov = stats::vcov) {
  b <- coef(fit)[position]
  v <- as.matrix(vcov(fit))[position, position, drop = FALSE]
  drop(b %*% solve(v, b)) / length(position)
}

value_of <- function(cells, subtype, row, column) {
  cells$value[cells$subtype == subtype & cells$row == row & cells$column == column]
}

# A folder for one test.
own_folder <- function(where = parent.frame()) {
  folder <- tempfile("test")
  dir.create(folder)
  do.call(on.exit, list(substitute(unlink(folder, recursive = TRUE), list(folder = folder)), add = TRUE),
          envir = where)
  folder
}
