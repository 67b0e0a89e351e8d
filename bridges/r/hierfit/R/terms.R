# From the terms of a formula to effects, and from the columns of its design to rows.

# How a column of a model frame enters a design.
kind_of <- function(column) {
  if (is.factor(column) || is.character(column) || is.logical(column)) "factor"
  else if (is.matrix(column) && ncol(column) > 1) "matrix"
  else "covariate"
}

levels_of <- function(column) {
  if (is.factor(column)) levels(column) else as.character(sort(unique(column[!is.na(column)])))
}

# "I(x^2)" is x with the power 2; any other expression is a variable of that name.
power_of <- function(name) {
  parts <- regmatches(name, regexec("^I\\(([.[:alpha:]][.[:alnum:]_]*)\\^([0-9]+)\\)$", name))[[1]]
  power <- if (length(parts)) as.integer(parts[3]) else 0L
  if (power %in% 1:20) list(field = parts[2], power = power) else list(field = name, power = 1L)
}

# The coding of a factor in a fit: its matrix, a row a level. A column that is 1 at one level and 0
# at all others stands for that level.
coding_of <- function(column, contrast) {
  levels <- levels_of(column)
  if (is.character(contrast) || is.function(contrast)) {
    contrast <- do.call(contrast, list(levels))
  } else if (is.null(contrast)) {
    contrast <- stats::contrasts(as.factor(column))
  }
  as.matrix(contrast)
}

level_of_columns <- function(coding, levels) {
  apply(coding, 2, function(column) {
    if (sum(column == 1) == 1 && sum(column != 0) == 1) levels[column == 1] else NA_character_
  })
}

# A name as a data frame has it, not as a formula quotes it.
without_quotes <- function(names) sub("^`(.*)`$", "\\1", names)

# What the columns of one variable in one term are: a row each with its level or its column.
# `full`: a column for each level, as the margin of the term demands.
columns_of <- function(name, column, contrast, full) {
  if (kind_of(column) == "factor") {
    levels <- levels_of(column)
    if (full) return(data.frame(level = levels, at = seq_along(levels)))
    coding <- coding_of(column, contrast)
    return(data.frame(level = level_of_columns(coding, levels), at = seq_len(ncol(coding))))
  }
  data.frame(level = NA_character_, at = seq_len(NCOL(column)))
}

#' The effects of a formula and the rows of its design
#'
#' What a method of [fit_parts()] needs for blocks of random effects that have slopes.
#'
#' @param terms the terms of one part of a formula.
#' @param frame a data frame with its variables.
#' @param contrasts the contrasts of its factors by name, as a model matrix has them.
#' @return a list: `effects`, as the document has them; `rows`, one for each column of `matrix`, with
#'   its effect (from 0), and the levels or the columns of its factors; `as_fitted`, which effects
#'   have columns that no levels tell, since contrasts or matrices made them; and what else the
#'   package needs of a design.
#' @export
design_of <- function(terms, frame, contrasts = NULL) {
  factors <- attr(terms, "factors")
  if (!length(factors)) factors <- matrix(0L, 0, 0)
  rownames(factors) <- without_quotes(rownames(factors))
  has_intercept <- attr(terms, "intercept") == 1
  is_factor <- vapply(rownames(factors), function(name) kind_of(frame[[name]]) == "factor", TRUE)
  # Without an intercept a model matrix has all levels of the first factor that it meets.
  if (!has_intercept) factors[which(factors > 0 & is_factor)[1]] <- 2L
  used <- rownames(factors)[rowSums(factors > 0) > 0]
  contrasts <- contrasts[intersect(names(contrasts), used)]
  matrix <- stats::model.matrix(stats::delete.response(terms), frame,
                                contrasts.arg = if (length(contrasts)) contrasts)
  assign <- attr(matrix, "assign")
  rows <- if (has_intercept) list(list(term = "Intercept")) else list()
  effects <- list()
  as_fitted <- logical()
  for (position in seq_len(ncol(factors))) {
    codes <- stats::setNames(factors[, position], rownames(factors))
    names <- rownames(factors)[codes > 0]
    sets <- lapply(names, function(name) {
      columns_of(name, frame[[name]], contrasts[[name]], codes[[name]] == 2)
    })
    effects[[position]] <- effect_of(names, codes[codes > 0], frame)
    is_factor <- vapply(names, function(name) kind_of(frame[[name]]) == "factor", TRUE)
    is_matrix <- vapply(names, function(name) kind_of(frame[[name]]) == "matrix", TRUE)
    as_fitted[position] <- any(is_matrix) ||
      any(vapply(sets[is_factor], function(set) anyNA(set$level), TRUE))
    # As in a model matrix, the columns of the first variable change fastest.
    grid <- expand.grid(lapply(sets, function(set) seq_len(nrow(set))))
    columns <- which(assign == position)
    if (nrow(grid) != length(columns)) stop_for("the columns of ", colnames(factors)[position],
                                                " are none that the package knows")
    for (line in seq_len(nrow(grid))) {
      at <- Map(function(set, index) set[index, ], sets[is_factor], grid[line, is_factor])
      names(at) <- names[is_factor]
      coded <- vapply(at, function(entry) is.na(entry$level), TRUE)
      rows[[length(rows) + 1]] <- list(
        term = colnames(matrix)[columns[line]], effect = position - 1L,
        levels = lapply(at[!coded], `[[`, "level"),
        columns = lapply(at[coded], function(entry) entry$at - 1L))
    }
  }
  list(effects = effects, rows = rows, as_fitted = as_fitted, matrix = matrix, assign = assign,
       intercept = has_intercept, terms = terms, contrasts = attr(matrix, "contrasts"),
       variables = used, frame = frame)
}

# An effect of the document. A factor that has all its levels beside one that has contrasts is what
# the other is nested in: R codes Age in Sex/Age so.
effect_of <- function(names, codes, frame) {
  is_factor <- vapply(names, function(name) kind_of(frame[[name]]) == "factor", TRUE)
  nests <- is_factor & codes == 2
  if (any(nests) && any(is_factor & !nests) && all(is_factor)) {
    order <- c(which(!nests), which(nests))
    return(list(fields = I(unname(names[order])), nesting = I(unname(as.integer(nests[order])))))
  }
  powers <- lapply(names, power_of)
  fields <- vapply(powers, `[[`, "", "field")
  powers <- vapply(powers, `[[`, 0L, "power")
  if (anyDuplicated(fields)) {
    fields <- names
    powers <- 1L
  }
  compact(list(fields = I(fields), powers = if (any(powers > 1)) I(powers)))
}
