# Blocks of random effects, for engines with formulas like those of lme4.

# The random terms of a formula: the bars, those of || taken apart and as they are.
find_bars <- function(term) {
  if (!is.call(term)) return(list())
  head <- as.character(term[[1]])[1]
  if (head == "|") return(list(list(inner = term[[2]], group = term[[3]])))
  if (head != "||") return(unlist(lapply(as.list(term)[-1], find_bars), recursive = FALSE))
  inner <- stats::terms(stats::as.formula(call("~", term[[2]])))
  labels <- c(if (attr(inner, "intercept")) "1", sprintf("0 + %s", attr(inner, "term.labels")))
  lapply(c(labels, deparse1(term[[2]])), function(label) {
    list(inner = str2lang(label), group = term[[3]])
  })
}

# The design of a block: that of a bar of its group whose columns have these names.
bar_design <- function(bars, columns, group, frame, contrasts = NULL) {
  fields <- strsplit(group, ":", fixed = TRUE)[[1]]
  for (bar in bars) {
    named <- c(deparse1(bar$group), vapply(all.vars(bar$group), identity, ""))
    if (!group %in% named && !all(fields %in% named)) next
    terms <- stats::terms(stats::as.formula(call("~", bar$inner)))
    design <- tryCatch(design_of(terms, frame, contrasts), error = function(e) NULL)
    if (identical(colnames(design$matrix), columns)) return(design)
  }
  stop_for("the random effects ", paste(columns, collapse = ", "), " of ", group,
           " are no columns of a design that the package knows")
}

# All blocks of a fit.
#
# `columns`: the names of the columns of each block, by the name of its group. `sigma_of(block)` is a
# function of the estimated parameters `at` that gives the covariance matrix of a block; `vcov` is
# their covariance, NULL where it is not known. `structures` are words by block. Blocks of one group
# with a column each are what || makes: one diagonal block.
random_blocks <- function(formula, frame, columns, sigma_of, at, vcov, structures = NULL,
                          parameters_of = function(block, design) NULL, contrasts = NULL) {
  bars <- find_bars(formula)
  groups <- names(columns)
  joins <- lengths(columns) == 1
  first <- vapply(seq_along(groups), function(block) {
    if (joins[block]) which(joins & groups == groups[block])[1] else block
  }, 0L)
  alone <- groups[!grepl(":", groups, fixed = TRUE)]
  blocks <- lapply(unique(first), function(start) {
    run <- which(first == start)
    of <- function(at) block_diagonal(lapply(run, function(block) sigma_of(block)(at)))
    design <- join_designs(lapply(run, function(block) {
      bar_design(bars, columns[[block]], groups[block], frame, contrasts)
    }))
    made <- block(subjects_of(groups[start], alone), of(at), design,
                  delta_se(function(at) by_rows(of(at)), at, vcov),
                  structure = if (length(run) > 1) "diagonal" else structures[start],
                  parameters = parameters_of(start, design))
    c(made, list(columns = paste0(unlist(columns[run]), "|", groups[start])))
  })
  # Subjects ahead of what is nested in them.
  blocks[order(vapply(blocks, function(block) length(block$subjects), 0L))]
}

block_diagonal <- function(matrices) {
  Reduce(function(one, other) {
    rbind(cbind(one, matrix(0, nrow(one), ncol(other))), cbind(matrix(0, nrow(other), ncol(one)), other))
  }, matrices)
}

# Blocks side by side: their effects and rows in one.
join_designs <- function(designs) {
  Reduce(function(one, other) {
    rows <- lapply(other$rows, function(row) {
      if (!is.null(row$effect)) row$effect <- row$effect + length(one$effects)
      row
    })
    list(effects = c(one$effects, other$effects), rows = c(one$rows, rows),
         as_fitted = c(one$as_fitted, other$as_fitted),
         intercept = one$intercept || other$intercept,
         variables = union(one$variables, other$variables))
  }, designs)
}

# The subjects that all blocks share, as the member of the residuals.
residual_part <- function(parameters, blocks = list(), ..., structure = "identity") {
  subjects <- common_subjects(blocks)
  compact(list(subjects = if (length(subjects)) I(subjects), ..., structure = structure,
               parameters = parameters))
}

singular_note <- paste("The fit is singular: a variance is zero, or a correlation is 1 or -1;",
                       "covariance parameters have no standard errors.")

# Squared profile limits of the standard deviations in place of Wald intervals of the variances.
with_profile <- function(parts, level) {
  if (!inherits(parts$fit, "merMod")) {
    stop_for("intervals = \"profile\" is there for fits of lme4; a fit of ", class(parts$fit)[1],
             " has intervals = \"wald\"")
  }
  limits <- suppressMessages(stats::confint(parts$fit, "theta_", level, oldNames = FALSE))^2
  limit <- function(row, name) {
    if (!identical(row$parameter, "variance") || !name %in% rownames(limits)) return(row)
    row$conf.low <- finite(limits[name, 1])
    row$conf.high <- finite(limits[name, 2])
    row
  }
  parts$random <- lapply(parts$random, function(block) {
    block$parameters <- lapply(block$parameters, function(row) {
      limit(row, paste0("sd_", block$columns[row$terms[1] + 1]))
    })
    block
  })
  parts$residual$parameters <- lapply(parts$residual$parameters, limit, "sigma")
  parts$notes <- c(parts$notes, "Intervals of variances are squared profile limits.")
  parts
}
