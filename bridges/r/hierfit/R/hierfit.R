# From a fit to a report: the functions that users call.

#' The report of a fitted model
#'
#' Takes a fitted generalized linear (mixed) model apart and hands it to the program hierfit, which
#' writes its report: model summary, tests of effects, coefficients, covariance parameters,
#' estimated means and contrasts, as tables and charts.
#'
#' Tests of effects are of type III, whatever the coding of the factors, and Wald tests where the
#' engine has no F test; designs with empty cells have tests of type II. Standard errors of
#' variances and covariances come from the engine's information matrix by the delta method.
#'
#' Means are averaged on the scale of the link. Contrasts on the scale "response" are differences of
#' means, not ratios.
#'
#' @param fit a fit of `lmer`, `glmer`, `glmmTMB`, `lme`, `gls`, `clmm`, `clm`, `multinom`, `polr`,
#'   `lm`, `glm` or `glm.nb`, or of any class that has a method of [fit_parts()].
#' @param means a list of formulas: `~ a | b` for the means of `a` and `b`, with `a` compared within
#'   `b`; `~ a * b` for the means alone.
#' @param contrasts "pairwise", "deviation" (each with the mean of all), "simple" (each with the
#'   reference), or NULL for none.
#' @param reference a list of reference levels for simple contrasts, by factor; absent: the first.
#' @param adjust how p values of contrasts are adjusted: "none", "holm", "sequential sidak", or a
#'   method of emmeans.
#' @param level the level of all intervals.
#' @param df the method of degrees of freedom: "satterthwaite" or "kenward-roger" (`lmer`),
#'   "containment" (`lme`), "residual" or "asymptotic". "auto" takes what the engine's own summary
#'   takes.
#' @param coefficients "as fitted", or "levels" for rows by level where factors were coded by sums
#'   or polynomials.
#' @param scale the scale of means and contrasts, "response" or "link".
#' @param intervals "wald" or, for fits of lme4, "profile": the intervals of variances, which take their
#'   time.
#' @param repeated names of variables that tell the records of a subject apart, for the table of the
#'   data structure.
#' @param at a list of values at which covariates are held; absent: their means.
#' @param labels texts by the names of variables; they come before attributes `label`.
#' @param title,name the title of the report, and a short name.
#' @return a list of class `hierfit` that holds the fit document.
#' @seealso [write_report()], [write_documents()], `vignette("hierfit")`
#' @examples
#' counts <- glm(count ~ spray, data = InsectSprays, family = poisson)
#' x <- hierfit(counts)
#' tidy <- as.list(x)$coefficients
#' tidy[[1]]$estimate
#' @export
hierfit <- function(fit, means = list(), contrasts = "pairwise", reference = list(),
                    adjust = "holm", level = .95, df = "auto", coefficients = "as fitted",
                    scale = "response", intervals = "wald", at = NULL, repeated = NULL, labels = NULL, title = NULL, name = NULL) {
  one_of(df, "df", c("auto", "satterthwaite", "kenward-roger", "containment", "residual", "asymptotic"))
  one_of(coefficients, "coefficients", c("as fitted", "levels"))
  one_of(scale, "scale", c("response", "link"))
  one_of(intervals, "intervals", c("wald", "profile"))
  one_of(contrasts, "contrasts", names(contrast_types))
  if (!is.numeric(level) || length(level) != 1 || !(level > 0 && level < 1)) {
    stop_for("level is between 0 and 1")
  }
  if (inherits(means, "formula")) means <- list(means)
  parts <- fit_parts(fit, df = df)
  if (intervals == "profile") parts <- with_profile(parts, level)
  settings <- list(
    means = means, contrasts = contrasts, reference = reference, adjust = adjust, level = level,
    coefficients = coefficients, scale = scale, at = at, labels = labels, repeated = repeated,
    formula = stats::formula(fit), title = title, name = if (is.null(name)) "model" else name)
  structure(list(document = fit_document(parts, settings), call = match.call()), class = "hierfit")
}

one_of <- function(value, name, words) {
  if (is.null(value) || (length(value) == 1 && value %in% words)) return(invisible())
  stop_for(name, " is one of ", paste0("\"", words, "\"", collapse = ", "))
}

#' @export
as.list.hierfit <- function(x, ...) x$document

#' Write a report
#'
#' @param x what [hierfit()] gives, or a fit that it takes.
#' @param ... files; the ending of each picks its form: html, pdf, docx, xlsx, tex, md, txt, csv,
#'   json, svg, png or vl.json.
#' @param style "default", "apa", "jama" or "lancet".
#' @param language a language tag: en, de, es, fr, ja, pt or zh-Hans; absent: that of the session.
#' @param options other options of the program, as a character vector.
#' @return the names of the files, invisibly.
#' @export
write_report <- function(x, ..., style = "default", language = NULL, options = NULL) {
  files <- c(...)
  if (!length(files)) stop_for("write_report() needs a file to write")
  run_on(x, c(display_options(style, language), rbind("--output", path.expand(files)), options))
  invisible(files)
}

#' Write the documents of a fit
#'
#' Writes `model.pmml` and `result.xml`, which hold no records but their summaries, and `fit.json`,
#' the fit document.
#'
#' @param x what [hierfit()] gives, or a fit that it takes.
#' @param folder where to; it is made if it is not there.
#' @param data whether `fit.json` holds the records of the target and of the subjects, which its
#'   charts of records need.
#' @return the folder, invisibly.
#' @export
write_documents <- function(x, folder, data = FALSE) {
  x <- as_hierfit(x)
  dir.create(folder, showWarnings = FALSE, recursive = TRUE)
  document <- x$document
  if (!data) document$data <- NULL
  run_on(x, c("import", "--output", path.expand(folder)))
  write_json(document, file.path(folder, "fit.json"))
  invisible(folder)
}

display_options <- function(style = NULL, language = NULL) {
  c(if (length(style)) c("--style", style), if (length(language)) c("--language", language))
}

as_hierfit <- function(x) if (inherits(x, "hierfit")) x else hierfit(x)

#' Show a report
#'
#' @param x what [hierfit()] gives.
#' @param ... for `print()` what `format()` takes.
#' @param form "text", "markdown", "html", "latex", "json" or "csv".
#' @param width the width of the text form.
#' @param style,language as in [write_report()].
#' @param options other options of the program.
#' @return `format()` gives the lines of the report.
#' @export
format.hierfit <- function(x, form = "text", width = getOption("width"), style = NULL, language = NULL,
                           options = NULL, ...) {
  run_on(x, c("--format", form, "--output", "-", display_options(style, language),
              if (form == "text") c("--width", width), options), warns = form == "csv")
}

#' @rdname format.hierfit
#' @export
print.hierfit <- function(x, ...) {
  if (has_program()) {
    lines <- format(x, ...)
    notes <- notes_beside(x, lines)
    cat(lines, if (length(notes)) c("", "Notes", strwrap(notes, getOption("width"))), sep = "\n")
  } else {
    cat("A fit for hierfit:", x$document$formula, "\n\n")
    print(tidy.hierfit(x))
    cat("\n", no_program, "\n", sep = "")
  }
  invisible(x)
}

# What readers should know of a fit and its report does not say: weights, offsets, zero inflation, a
# singular fit, what the engine warned of.
notes_beside <- function(x, report) {
  notes <- as.character(c(x$document$engine$warnings, x$document$engine$notes))
  # Letters and digits are the same in all forms; entities, commands and line breaks are not.
  letters_of <- function(text) gsub("[^[:alnum:]]+", "", gsub("&[a-z]+;|\\\\[a-z]+", "", text))
  told <- letters_of(paste(report, collapse = " "))
  notes[!vapply(letters_of(notes), grepl, TRUE, told, fixed = TRUE)]
}

# The numbers of a fit as data frames, with the names of broom.

tidy_rows <- function(rows, members) {
  cell <- function(row, member) {
    value <- row[[member]]
    if (is.null(value)) NA else value
  }
  columns <- lapply(stats::setNames(members, members), function(member) {
    unlist(lapply(rows, cell, member))
  })
  as.data.frame(columns, stringsAsFactors = FALSE)
}

tidy_what <- c("coefficients", "means", "contrasts", "random", "tests")

#' Numbers as data frames
#'
#' @param x what [hierfit()] gives.
#' @param what "coefficients", "means", "contrasts", "random" or "tests".
#' @param ... not used.
#' @return a data frame with the columns of broom. P values of contrasts are not adjusted here.
#' @exportS3Method generics::tidy
tidy.hierfit <- function(x, what = "coefficients", ...) {
  one_of(what, "what", tidy_what)
  document <- x$document
  numbers <- c("estimate", "std.error", "df")
  with_levels <- function(blocks, members) {
    tables <- lapply(seq_along(blocks), function(block) {
      rows <- blocks[[block]]
      levels <- do.call(rbind, lapply(rows, function(row) as.data.frame(row$levels, optional = TRUE)))
      table <- cbind(block = rep(block, length(rows)), tidy_rows(rows, members))
      if (length(levels)) cbind(table[1], levels, table[-1]) else table
    })
    bind_rows(tables)
  }
  switch(
    what,
    coefficients = with_statistic(tidy_rows(document$coefficients, c(
      if (document$distribution == "nominal") "y.level", "term", numbers)), document$conf.level),
    means = with_levels(lapply(document$means, `[[`, "rows"), c(numbers, "conf.low", "conf.high")),
    contrasts = with_statistic(with_levels(lapply(document$means, function(block) block$contrasts$rows),
                                           c("level", "against", numbers))),
    random = {
      members <- c("parameter", "terms", "estimate", "std.error")
      bind_rows(c(
        Map(function(block, at) cbind(block = at, group = paste(block$subjects, collapse = ":"),
                                      tidy_rows(lapply(block$parameters, name_terms, block), members)),
            document$random, seq_along(document$random)),
        if (length(document$residual$parameters)) list(cbind(
          block = NA, group = "Residual",
          tidy_rows(lapply(document$residual$parameters, name_terms, list()), members)))))
    },
    tests = bind_rows(c(
      list(cbind(effect = "Corrected Model", tidy_test(document$tests$model))),
      lapply(document$tests$effects, function(test) {
        fields <- document$fixed$effects[[test$effect + 1]]$fields
        cbind(effect = paste(fields, collapse = ":"), tidy_test(test))
      }))))
}

tidy_test <- function(test) {
  table <- tidy_rows(list(test), c("statistic", "num.df", "den.df"))
  table$p.value <- if (is.null(test$statistic)) NA_real_ else f_p(test)
  table
}

name_terms <- function(parameter, block) {
  names <- if (is.null(block$terms)) "Intercept" else vapply(block$terms, `[[`, "", "term")
  parameter$terms <- paste(c(names[as.integer(parameter$terms) + 1], unlist(parameter$levels)),
                           collapse = ", ")
  parameter
}

bind_rows <- function(tables) {
  tables <- Filter(function(table) !is.null(table) && nrow(table) > 0, tables)
  names <- unique(unlist(lapply(tables, names)))
  do.call(rbind, lapply(tables, function(table) {
    table[setdiff(names, names(table))] <- NA
    table[names]
  }))
}

with_statistic <- function(table, level = NULL) {
  if (is.null(table)) return(NULL)
  df <- ifelse(is.na(table$df), Inf, table$df)
  table$statistic <- table$estimate / table$std.error
  table$p.value <- 2 * stats::pt(-abs(table$statistic), df)
  if (!is.null(level)) {
    reach <- stats::qt((1 + level) / 2, df) * table$std.error
    table$conf.low <- table$estimate - reach
    table$conf.high <- table$estimate + reach
  }
  table
}

#' @rdname tidy.hierfit
#' @exportS3Method generics::glance
glance.hierfit <- function(x, ...) {
  document <- x$document
  records <- length(document$data$columns[[1]])
  data.frame(nobs = records, tidy_rows(list(document$statistics), c("logLik", "AICc", "BIC")),
             df.method = document$df.method)
}

#' Every cell of a report
#'
#' @param x what [hierfit()] gives.
#' @param row.names,optional,... not used.
#' @param language of the labels; see [write_report()].
#' @return a data frame with a row for each cell of each table: `table`, `subtype`, `title`,
#'   `row_number`, `row`, `column_number`, `column`, `value`, `shown` and `notes`.
#' @export
as.data.frame.hierfit <- function(x, row.names = NULL, optional = FALSE, language = "en", ...) {
  cells <- utils::read.csv(text = format(x, "csv", language = language), encoding = "UTF-8",
                           colClasses = "character")
  whole <- c("table", "row_number", "column_number")
  cells[whole] <- lapply(cells[whole], as.integer)
  # The reader of jsonlite is exact, that of R not always.
  values <- paste(ifelse(nzchar(cells$value), cells$value, "null"), collapse = ",")
  cells$value <- as.numeric(jsonlite::fromJSON(sprintf("[%s]", values)))
  cells
}
