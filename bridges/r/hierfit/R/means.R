# Estimated means and contrasts, by emmeans.

# The document's words for adjustments of p values; any other is left to emmeans.
adjust_words <- c("none", "holm", "sequential sidak")
contrast_types <- c(pairwise = "pairwise", deviation = "eff", simple = "trt.vs.ctrl")

# A source of means: the reference grid, on the scale of the link or of the target.
mean_source <- function(parts, settings) {
  need("emmeans", "a report with means")
  tryCatch(
    suppressMessages(do.call(emmeans::ref_grid, c(list(parts$means_fit, at = settings$at),
                                                  parts$means))),
    error = function(e) stop_for("emmeans cannot make means of this fit: ", conditionMessage(e)))
}

has_identity <- function(parts) parts$link == "identity"

# The means of some fields: a row each, the last field fastest. Means are averaged on the scale of the
# link and then brought to that of the target. emmeans adds the fields that others are nested in.
marginal <- function(source, fields, parts, settings, scale = settings$scale) {
  in_grid <- grid_names(source, parts)
  asked <- unname(in_grid[fields])
  means <- suppressMessages(emmeans::emmeans(source, if (length(fields)) asked else ~ 1))
  means <- untransformed(means, parts)
  if (length(fields)) fields <- c(fields, names(in_grid)[in_grid %in% setdiff(names(means@levels), asked)])
  type <- if (scale == "response") "response" else "link"
  summary <- summary(means, type = type, level = settings$level, infer = c(TRUE, FALSE))
  bounds <- attr(summary, "clNames")
  numbers <- data.frame(estimate = summary[[attr(summary, "estName")]], SE = summary$SE,
                        df = summary$df, low = summary[[bounds[1]]], high = summary[[bounds[2]]])
  levels <- lapply(stats::setNames(in_grid[fields], fields), function(name) summary[[name]])
  order <- if (length(fields)) do.call(order, unname(lapply(levels, rank_of))) else 1
  list(means = means, fields = fields, numbers = numbers[order, ],
       levels = lapply(levels, function(column) column[order]))
}

# The variables of a grid by the names that the document has: a factor(x) of the model is x there.
grid_names <- function(source, parts) {
  grid <- names(source@levels)
  bare <- stats::setNames(names(parts$frame), bare_name(names(parts$frame)))
  stats::setNames(grid, ifelse(grid %in% names(parts$frame) | !grid %in% names(bare), grid, bare[grid]))
}

rank_of <- function(column) if (is.factor(column)) as.integer(column) else match(column, unique(column))

# A transformed response stays as the model has it: the target is that transformation.
untransformed <- function(means, parts) {
  if (has_identity(parts)) stats::update(means, tran = NULL) else means
}

level_value <- function(value) if (is.numeric(value)) value else as.character(value)

mean_rows <- function(means) {
  lapply(seq_len(nrow(means$numbers)), function(at) {
    own <- means$numbers[at, ]
    compact(list(levels = if (length(means$fields))
                   lapply(means$levels, function(column) level_value(column[at])),
                 estimate = finite(own$estimate), std.error = finite(own$SE), df = finite(own$df),
                 conf.low = finite(own$low), conf.high = finite(own$high)))
  })
}

# A block of means from a formula: ~ a, ~ a | b, ~ a * b. The factor ahead of the bar is compared
# within the levels of those behind it; with several ahead of it there is nothing to compare.
means_block <- function(formula, source, parts, settings, variables) {
  asked <- formula[[length(formula)]]
  is_split <- is.call(asked) && identical(asked[[1]], quote(`|`))
  compared <- all.vars(if (is_split) asked[[2]] else asked)
  others <- if (is_split) all.vars(asked[[3]])
  names <- grid_names(source, parts)
  unknown <- setdiff(c(compared, others), c(names, names(names)))
  if (length(unknown) || !length(compared)) {
    stop_for("means of ", deparse1(formula), ": ", if (length(unknown)) paste(unknown, collapse = ", ")
             else "nothing", " is no variable of the model; it has ", paste(names, collapse = ", "))
  }
  as_document <- function(fields) ifelse(fields %in% names, names(names)[match(fields, names)], fields)
  compared <- as_document(compared)
  means <- marginal(source, c(compared, as_document(others)), parts, settings)
  fields <- means$fields
  others <- setdiff(fields, compared)
  for (field in fields) variables$add(field, grid_column(source, field, parts))
  held <- Filter(function(values) is.numeric(values) && length(values) == 1,
                 source@levels[setdiff(names, names[fields])])
  for (name in names(held)) variables$add(name, numeric())
  can_compare <- length(compared) == 1 && !is.null(settings$contrasts) &&
    is_factor_of(compared, parts)
  contrasts <- if (can_compare) contrast_block(means, compared, others, parts, settings)
  compact(list(fields = I(fields), at = if (length(held)) held, scale = settings$scale,
               rows = mean_rows(means), contrasts = contrasts,
               conditions = if (can_compare && is.null(contrasts)) I("contrasts not computed")))
}

# A variable of the grid: a factor(x) in the formula is x there.
grid_column <- function(source, field, parts) {
  column <- parts$frame[[field]]
  if (is.null(column)) factor(source@levels[[field]], source@levels[[field]]) else column
}

is_factor_of <- function(field, parts) {
  is.null(parts$frame[[field]]) || kind_of(parts$frame[[field]]) == "factor"
}

# The levels that emmeans compares, in its order: each with all that come after it, or the levels in
# theirs.
compared_levels <- function(type, levels, reference) {
  size <- length(levels)
  switch(type,
         pairwise = list(level = rep(levels, size - seq_len(size)),
                         against = levels[unlist(lapply(seq_len(size - 1), function(at) (at + 1):size))]),
         deviation = list(level = levels),
         simple = list(level = levels[-reference], against = rep(levels[reference], size - 1)))
}

reference_of <- function(compare, levels, given) {
  reference <- unlist(as.list(given)[compare])[1]
  if (is.null(reference)) return(1L)
  if (!as.character(reference) %in% levels) {
    stop_for("reference: ", reference, " is no level of ", compare[1], "; it has ",
             paste(levels, collapse = ", "))
  }
  match(as.character(reference), levels)
}

# Contrasts are differences of means on the scale of the means, not ratios. None are told where
# emmeans compares other levels in each group, as it does of nested factors.
contrast_block <- function(means, compare, others, parts, settings) {
  in_grid <- grid_names(means$means, parts)
  grid <- if (settings$scale == "response" && !has_identity(parts)) emmeans::regrid(means$means)
          else means$means
  type <- settings$contrasts
  levels <- as.character(grid@levels[[in_grid[[compare]]]])
  reference <- reference_of(c(compare, in_grid[[compare]]), levels, settings$reference)
  arguments <- list(grid, method = contrast_types[[type]], adjust = "none",
                    by = if (length(others)) unname(in_grid[others]))
  if (type == "simple") arguments$ref <- reference
  contrasts <- do.call(emmeans::contrast, arguments)
  is_own <- !settings$adjust %in% adjust_words
  table <- as.data.frame(summary(contrasts, adjust = if (is_own) settings$adjust else "none",
                                 infer = c(TRUE, TRUE), level = settings$level))
  pairs <- compared_levels(type, levels, reference)
  groups <- prod(lengths(grid@levels[in_grid[others]]))
  if (nrow(table) != length(pairs$level) * groups) return(NULL)
  raw <- as.data.frame(summary(contrasts, adjust = "none", infer = c(FALSE, TRUE)))$p.value
  bounds <- grep("LCL$|UCL$|[.]CL$", names(table))
  rows <- lapply(seq_len(nrow(table)), function(line) {
    at <- (line - 1) %% length(pairs$level) + 1
    own <- table[line, ]
    compact(c(
      list(levels = if (length(others)) stats::setNames(lapply(own[in_grid[others]], level_value), others),
           level = pairs$level[at], against = if (!is.null(pairs$against)) pairs$against[at],
           estimate = finite(own$estimate), std.error = finite(own$SE), df = finite(own$df)),
      if (is_own) list(p.value = finite(raw[line]), adj.p.value = finite(own$p.value),
                       conf.low = finite(own[[bounds[1]]]), conf.high = finite(own[[bounds[2]]]))))
  })
  compact(list(compare = compare, type = type, rows = rows,
               reference = if (type == "simple") levels[reference],
               vcov = if (all(is.finite(table$SE))) lower_triangle(as.matrix(stats::vcov(contrasts)))))
}

# The means of the effects that tell most, for their charts: those of factors, and of one covariate
# along its range.
effect_means <- function(source, parts, design, tests, settings, most = 10, most_cells = 60) {
  p <- vapply(tests$effects, function(test) {
    if (is.null(test$statistic)) return(NA_real_)
    f_p(test)
  }, 0)
  means <- lapply(order(p), function(effect) {
    fields <- as.character(design$effects[[effect]]$fields)
    names <- grid_names(source, parts)
    if (!all(fields %in% names(names)) || length(design$effects[[effect]]$powers)) return(NULL)
    numeric <- Filter(function(field) is.numeric(parts$frame[[field]]), fields)
    cells <- prod(lengths(source@levels[names[fields]]))
    if (cells > most_cells || (length(numeric) && length(fields) > 1)) return(NULL)
    at <- if (length(numeric)) stats::setNames(list(along(parts$frame[[fields]])), names[fields])
    source <- if (is.null(at)) source else mean_source(parts, list(at = c(at, settings$at)))
    means <- marginal(source, fields, parts, settings, scale = "response")
    if (length(means$fields) > length(fields)) return(NULL)
    list(fields = I(fields), rows = mean_rows(means))
  })
  utils::head(Filter(Negate(is.null), means), most)
}

f_p <- function(test) {
  if (is.null(test$den.df)) {
    return(stats::pchisq(test$statistic * test$num.df, test$num.df, lower.tail = FALSE))
  }
  stats::pf(test$statistic, test$num.df, test$den.df, lower.tail = FALSE)
}

# Where a covariate is charted: at its values if they are few, else at round places in its range.
along <- function(column) {
  values <- sort(unique(column))
  if (length(values) <= 10) return(values)
  round <- pretty(values, 5)
  round[round >= min(values) & round <= max(values)]
}
