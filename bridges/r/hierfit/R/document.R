# The fit document: one list, as docs/fit.md of the program tells.

fit_document <- function(parts, settings) {
  formula <- stats::formula(parts$terms)
  data <- data_of(parts$fit, formula)
  parts <- with_repeated(parts, data, settings$repeated)
  variables <- variable_list(parts$frame, data, settings$labels)
  design <- design_of(parts$terms, parts$frame, parts$contrasts)
  kept <- kept_columns(parts, design)
  coded <- settings$coefficients == "levels" && any(design$as_fitted)
  if (coded) check_codings(design, parts)
  target <- target_of(parts, variables)
  tests <- tests_of(parts, design, kept)
  add_design_variables(design, parts, variables)
  for (block in parts$random) add_block_variables(block, parts, variables)
  add_residual_variables(parts$residual, parts, variables)
  means <- parts_with_means(parts, design, tests, settings, variables)
  columns <- c(target$columns, subject_columns(parts))
  compact(c(
    list(hierfit = "hierfit-fit-1",
         engine = compact(list(
           name = parts$engine, version = as.character(utils::packageVersion(parts$engine)),
           call = call_text(parts$fit),
           warnings = list_of_texts(parts$warnings), notes = list_of_texts(c(
             parts$notes, if (identical(tests$type, "II")) type_two_note, means$notes)),
           conditions = list_of_texts(parts$conditions))),
         name = settings$name, title = settings$title, formula = deparse1(settings$formula, " "),
         variables = variables$all(), target = target$target, distribution = parts$distribution,
         link = parts$link, link.parameter = parts$link.parameter,
         fixed = compact(list(intercept = if (!length(parts$thresholds)) design$intercept,
                              effects = design$effects,
                              codings = if (coded) codings_of(design))),
         random = if (length(parts$random))
           lapply(parts$random, function(block) block[!names(block) %in% c("variables", "columns")]),
         residual = parts$residual,
         coefficients = coefficient_rows(parts, design, kept, coded),
         vcov = if (coded) lower_triangle(parts$vcov), tests = tests,
         statistics = statistics_of(parts)),
    means$members,
    list(conf.level = settings$level, df.method = parts$df.method,
         adjust = if (settings$adjust %in% adjust_words) settings$adjust else "other",
         data = list(columns = lapply(columns, I), predicted = I(unname(target$predicted))))))
}

# Repeated measures, which may be variables that the data have and the model has not.
with_repeated <- function(parts, data, names) {
  if (!length(names)) return(parts)
  omitted <- stats::na.action(parts$frame)
  for (name in setdiff(names, names(parts$frame))) {
    column <- data[[name]]
    if (length(omitted)) column <- column[-omitted]
    if (length(column) != nrow(parts$frame)) {
      stop_for("repeated: ", name, " is no variable of the model or of its data")
    }
    parts$frame[[name]] <- column
  }
  parts$residual$repeated <- I(names)
  parts
}

# The call of a fit as text. Values that stand in it, as do.call() leaves them, are not told: they may
# be the records.
call_text <- function(fit, most = 1000) {
  call <- tryCatch(stats::getCall(fit), error = function(e) NULL)
  if (is.null(call)) return(NULL)
  is_short <- function(part) is.null(part) || is.language(part) || (is.atomic(part) && length(part) == 1)
  told <- lapply(as.list(call), function(part) if (is_short(part)) part else quote(...))
  text <- deparse1(as.call(told), " ")
  if (nchar(text) > most) paste0(substr(text, 1, most), " ...") else text
}

list_of_texts <- function(texts) if (length(texts)) I(as.character(texts))

# Which columns of the design have a coefficient. The others hang on them and are redundant.
kept_columns <- function(parts, design) {
  names <- as.character(if (is.matrix(parts$coef)) colnames(parts$coef) else names(parts$coef))
  columns <- colnames(design$matrix)
  if (!identical(names, columns[columns %in% names])) {
    stop_for("the coefficients ", paste(setdiff(names, columns), collapse = ", "),
             " are no columns of the design of ", deparse1(stats::formula(parts$terms)))
  }
  columns %in% names
}

check_codings <- function(design, parts) {
  if (length(parts$thresholds)) {
    stop_for("coefficients = \"levels\" is not there for ordinal targets; use coefficients = \"as fitted\"")
  }
  is_matrix <- vapply(design$variables, function(name) kind_of(design$frame[[name]]) == "matrix", TRUE)
  if (any(is_matrix)) {
    stop_for("coefficients = \"levels\" has no place for the columns of ",
             design$variables[is_matrix][1], "; use coefficients = \"as fitted\"")
  }
}

codings_of <- function(design) {
  columns <- unlist(lapply(design$rows, function(row) names(row$columns)))
  lapply(unique(columns), function(name) {
    coding <- coding_of(design$frame[[name]], design$contrasts[[name]])
    list(variable = name,
         matrix = lapply(seq_len(nrow(coding)), function(row) I(unname(coding[row, ]))))
  })
}

# A row for each coefficient: those of the thresholds, and those of each category of a nominal target.
coefficient_rows <- function(parts, design, kept, coded) {
  places <- lapply(design$rows[kept], row_place, design$as_fitted, coded)
  coef <- if (is.matrix(parts$coef)) parts$coef else matrix(as.numeric(parts$coef), 1)
  se <- sqrt(diag(parts$vcov))
  df <- coefficient_df(parts, length(parts$thresholds) + length(coef))
  at <- 0
  row <- function(place, estimate) {
    at <<- at + 1
    c(place, compact(list(estimate = unname(estimate), std.error = finite(se[[at]]),
                          df = finite(df[at]))))
  }
  thresholds <- lapply(names(parts$thresholds), function(name) {
    row(list(term = name, threshold = sub("\\|.*$", "", name)), parts$thresholds[[name]])
  })
  sets <- lapply(seq_len(nrow(coef)), function(set) {
    category <- rownames(parts$coef)[set]
    lapply(seq_along(places), function(column) {
      row(c(if (length(category)) list(y.level = category), places[[column]]), coef[set, column])
    })
  })
  c(thresholds, unlist(sets, recursive = FALSE))
}

coefficient_df <- function(parts, count) {
  if (parts$df.method == "asymptotic") return(rep(NA_real_, count))
  unit <- diag(count)
  vapply(seq_len(count), function(row) {
    df <- parts$contest(unit[row, , drop = FALSE])$den.df
    if (length(df)) as.numeric(df) else NA_real_
  }, 0)
}

statistics_of <- function(parts) {
  loglik <- as.numeric(parts$loglik)
  count <- attr(parts$loglik, "df")
  records <- attr(parts$loglik, "nobs")
  if (is.null(records)) records <- nrow(parts$frame)
  if (!length(loglik) || !is.finite(loglik)) return(NULL)
  compact(list(
    AICc = if (records > count + 1) -2 * loglik + 2 * count * records / (records - count - 1),
    BIC = -2 * loglik + count * log(records), logLik = loglik))
}

# Variables of the parts of a model. A matrix such as poly(x, 2) is told as the set of its columns.
add_design_variables <- function(design, parts, variables) {
  powers <- lapply(design$variables, power_of)
  for (at in seq_along(powers)) {
    name <- design$variables[at]
    column <- design$frame[[name]]
    field <- powers[[at]]$field
    used <- unlist(lapply(design$effects, `[[`, "fields"))
    if (!name %in% used) name <- field
    if (kind_of(column) == "matrix") {
      variables$add(name, level = "nominal", type = "string",
                    values = I(as.character(seq_len(ncol(column)))))
    } else variables$add(name, column)
  }
}

add_block_variables <- function(block, parts, variables) {
  for (name in block$subjects) variables$add(name, as.factor(grouping(parts, name)))
  for (name in block$variables) variables$add(power_of(name)$field, parts$frame[[name]])
}

add_residual_variables <- function(residual, parts, variables) {
  for (name in c(residual$subjects, residual$groups)) variables$add(name, as.factor(grouping(parts, name)))
  for (name in residual$repeated) variables$add(name)
}

# A grouping factor by its name, or by the expression that is its name.
grouping <- function(parts, name) {
  column <- parts$frame[[name]]
  if (is.null(column)) column <- eval(str2lang(name), parts$frame, environment(parts$terms))
  column
}

# Records go no further than the import: the target's, its trials', and the subjects'.
subject_columns <- function(parts) {
  fields <- unique(as.character(unlist(c(lapply(parts$random, `[[`, "subjects"),
                                         parts$residual$subjects))))
  repeated <- as.character(parts$residual$repeated)
  c(stats::setNames(lapply(fields, function(name) as.character(grouping(parts, name))), fields),
    stats::setNames(lapply(repeated, function(name) record_values(parts$frame[[name]])), repeated))
}

# The members that hold means. Those that are not asked for are left out where emmeans has none, and
# for ordinal targets, whose means are on the scale of a latent variable.
parts_with_means <- function(parts, design, tests, settings, variables) {
  asked <- length(settings$means) > 0
  is_ordinal <- parts$distribution == "ordinal"
  if (is.null(parts$means) && asked) stop_for("a ", parts$distribution, " target has no means here")
  if (is.null(parts$means) || (is_ordinal && !asked)) return(list())
  if (is_ordinal) settings$scale <- "link"
  source <- tryCatch(mean_source(parts, settings), error = function(e) if (asked) stop(e) else e)
  if (inherits(source, "error")) {
    return(list(notes = gsub("\\s+", " ", sub("^hierfit: ", "", conditionMessage(source)))))
  }
  blocks <- lapply(settings$means, means_block, source, parts, settings, variables)
  if (is_ordinal) {
    return(list(notes = "Means are on the scale of the latent variable.", members = list(means = blocks)))
  }
  grand <- marginal(source, character(), parts, settings, scale = "response")
  list(members = compact(list(
    grand.mean = if (is.finite(grand$numbers$estimate)) mean_rows(grand)[[1]],
    effect.means = effect_means(source, parts, design, tests, settings),
    means = if (asked) blocks)))
}
