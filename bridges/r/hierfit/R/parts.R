# What a document is made of, engine by engine.

#' What a fitted model consists of
#'
#' The one function that the author of another engine writes: a method for the class of the fits,
#' which calls `parts()` with what the engine knows. `vignette("engines", "hierfit")` tells how.
#'
#' @param fit a fitted model.
#' @param df the method of the degrees of freedom that was asked for: one of "auto",
#'   "satterthwaite", "kenward-roger", "containment", "residual", "asymptotic".
#' @param engine the name of the package that made the fit.
#' @param frame the model frame: all variables of the model, and its response.
#' @param terms the terms of the fixed part, with the response.
#' @param coef the fixed coefficients, named as the columns of the model matrix; a matrix with a row
#'   for each category for nominal targets.
#' @param vcov their covariance; with thresholds ahead of them; by rows of a matrix `coef`.
#' @param family a family object, or a list with `family` and `link` in the words of the document.
#' @param df.method the method that is used, one of those above, or "other".
#' @param contest a function of a matrix of hypotheses about the coefficients, a row each, that
#'   gives a list of `statistic`, `num.df` and `den.df` of the F test. Absent: a Wald test with
#'   `df.residual` or no degrees of freedom, as `df.method` says.
#' @param df.residual the residual degrees of freedom.
#' @param thresholds of an ordinal target, by names like "low|high".
#' @param contrasts the contrasts of the factors by name, as a model matrix has them.
#' @param random,residual the blocks of random effects and the residuals, as the document has them;
#'   see [block()] and [residual_parameter()].
#' @param loglik the log likelihood, with its attribute `df`.
#' @param predicted the prediction for each record: the mean, for a binomial target the probability,
#'   for nominal and ordinal ones the category.
#' @param means the arguments of `emmeans::ref_grid()` that give these degrees of freedom; NULL for
#'   a fit that emmeans cannot have.
#' @param means_fit the fit that emmeans takes.
#' @param notes,warnings,conditions sentences for readers, and conditions as the document has them.
#' @return `parts()` gives a list of class `hierfit_parts`; `fit_parts()` the same.
#' @export
fit_parts <- function(fit, df = "auto") UseMethod("fit_parts")

#' @export
fit_parts.default <- function(fit, df = "auto") {
  stop_for("there is no fit_parts() method for a fit of class ", paste(class(fit), collapse = ", "),
           "; vignette(\"engines\", \"hierfit\") tells how to write one")
}

#' @rdname fit_parts
#' @export
parts <- function(fit, engine, frame, terms, coef, vcov, family, df.method, df.residual = NULL,
                  contest = NULL, thresholds = NULL, contrasts = NULL, random = list(),
                  residual = NULL, loglik = stats::logLik(fit), predicted = stats::fitted(fit),
                  means = list(), means_fit = fit, notes = NULL, warnings = NULL,
                  conditions = NULL) {
  words <- words_of_family(family)
  vcov <- as.matrix(vcov)
  if (length(predicted) > nrow(frame)) predicted <- predicted[!is.na(predicted)]  # na.exclude
  if (is.null(contest)) {
    contest <- wald(c(thresholds, as.vector(t(coef))), vcov,
                    if (df.method == "asymptotic") NA_real_ else df.residual)
  }
  if (!is.null(means) && df.method %in% c("residual", "asymptotic")) {
    means$df <- if (df.method == "residual") df.residual else Inf
  }
  structure(c(words[c("distribution", "link", "link.parameter")], list(
    fit = fit, engine = engine, frame = frame, terms = terms, coef = coef, vcov = vcov,
    df.method = df.method, contest = contest, thresholds = thresholds, contrasts = contrasts,
    random = random, residual = residual, loglik = loglik, predicted = predicted, means = means,
    means_fit = means_fit, notes = c(words$note, common_notes(frame, words), notes),
    warnings = warnings, conditions = conditions)), class = "hierfit_parts")
}

# Stops for a fit of a class that only inherits what the package knows: its numbers may be others.
only_class <- function(fit, classes) {
  if (class(fit)[1] %in% classes) return(invisible())
  stop_for("a fit of class ", class(fit)[1], " is not told like one of class ", classes[1],
           "; vignette(\"engines\", \"hierfit\") tells how to write fit_parts.", class(fit)[1], "()")
}

# The families of R: the word of the document, and what readers should know. One that is not here is
# "other", with a note.
family_rows <- rbind(
  c("gaussian", "normal", ""),
  c("binomial", "binomial", ""),
  c("poisson", "poisson", ""),
  c("Gamma", "gamma", ""),
  c("inverse.gaussian", "inverse gaussian", ""),
  c("negative binomial", "negative binomial", ""),
  c("nbinom2", "negative binomial", ""),
  c("betabinomial", "binomial", "The distribution is beta-binomial."),
  c("nbinom1", "negative binomial",
    "The variance is a multiple of the mean (the family nbinom1)."),
  c("quasibinomial", "binomial",
    "Quasi-likelihood: the dispersion is estimated, and there is no likelihood."),
  c("quasipoisson", "poisson",
    "Quasi-likelihood: the dispersion is estimated, and there is no likelihood."),
  c("nominal", "nominal", ""),
  c("ordinal", "ordinal", ""))

link_rows <- rbind(
  c("identity", "identity", NA), c("log", "log", NA), c("logit", "logit", NA),
  c("logistic", "logit", NA), c("probit", "probit", NA), c("cloglog", "cloglog", NA),
  c("loglog", "loglog", NA), c("cauchit", "cauchit", NA), c("inverse", "power", -1),
  c("1/mu^2", "power", -2), c("sqrt", "power", .5))

words_of_family <- function(family) {
  name <- sub("^Negative Binomial\\(.*\\)$", "negative binomial", family$family)
  row <- family_rows[family_rows[, 1] == name, ]
  link <- link_rows[link_rows[, 1] == family$link, ]
  known <- length(row) > 0
  list(distribution = if (known) row[2] else "other",
       link = if (length(link)) link[2] else "other",
       link.parameter = if (length(link) && !is.na(link[3])) as.numeric(link[3]),
       note = c(if (!known) sprintf("The distribution is that of the family %s.", name),
                if (known && nzchar(row[3])) row[3],
                if (!length(link)) sprintf("The link function is %s.", family$link)))
}

common_notes <- function(frame, words) {
  weights <- stats::model.weights(frame)
  counts <- words$distribution == "binomial"
  c(if (!counts && length(unique(weights)) > 1) "The records have weights.",
    if (!is.null(stats::model.offset(frame)) && any(stats::model.offset(frame) != 0))
      "The model has an offset; means hold its variables at their means.")
}

# The method that is used, or a stop that names those there are.
choose_df <- function(df, there) {
  if (df == "auto") return(there[1])
  if (df %in% there) return(df)
  stop_for("df = \"", df, "\" is not offered for this fit; it has ",
           paste0("\"", there, "\"", collapse = ", "))
}

#' Blocks of random effects
#'
#' @param subjects the variables whose combinations are the subjects.
#' @param matrix the covariance matrix of the columns.
#' @param design what `design_of()` tells of the block's columns; absent: an intercept.
#' @param se the standard errors of the lower triangle of the matrix, by rows; absent: unknown.
#' @param structure the word of the covariance structure.
#' @param parameters rows as the document has them; absent: those of the matrix.
#' @return a block as the document has it.
#' @export
block <- function(subjects, matrix, design = NULL, se = NULL, structure = NULL, parameters = NULL) {
  size <- nrow(matrix)
  if (is.null(structure)) structure <- if (size > 1) "unstructured" else "variance components"
  only_variances <- structure %in% c("variance components", "diagonal")
  cells <- which(upper.tri(matrix, TRUE), arr.ind = TRUE)  # by rows of the lower triangle
  if (is.null(parameters)) {
    parameters <- lapply(seq_len(nrow(cells)), function(line) {
      at <- cells[line, ]
      is_variance <- at[1] == at[2]
      if (!is_variance && only_variances) return(NULL)
      compact(list(parameter = if (is_variance) "variance" else "covariance",
                   terms = I(unname(if (is_variance) at[1] else rev(at))) - 1L,
                   estimate = matrix[at[1], at[2]], std.error = finite(se[line])))
    })
    parameters <- Filter(Negate(is.null), parameters)
  }
  is_plain <- is.null(design) || (size == 1 && design$intercept)
  compact(list(
    subjects = I(subjects), structure = structure,
    intercept = if (!is_plain) design$intercept,
    effects = if (!is_plain) design$effects,
    terms = if (!is_plain) lapply(design$rows, row_place, design$as_fitted),
    parameters = parameters,
    covariances = list(list(matrix = lower_triangle(matrix))), variables = design$variables))
}

#' @rdname block
#' @param estimate the estimate.
#' @param std.error its standard error, NULL if it is not known.
#' @param parameter "variance", "dispersion" or any other text.
#' @param ... other members of the row.
#' @export
residual_parameter <- function(parameter, estimate, std.error = NULL, ...) {
  compact(list(parameter = parameter, ..., estimate = estimate, std.error = finite(std.error)))
}

# The row of a design in the document: its effect, and its levels, its columns or its name.
row_place <- function(row, as_fitted, codings = FALSE) {
  if (is.null(row$effect)) return(list(term = row$term))
  by_name <- as_fitted[row$effect + 1] && !codings
  compact(c(row[c("term", "effect")],
            if (!by_name) list(levels = if (length(row$levels)) row$levels,
                               columns = if (length(row$columns)) row$columns)))
}

# The subjects that all blocks share.
common_subjects <- function(blocks) {
  if (length(blocks)) Reduce(intersect, lapply(blocks, function(block) as.character(block$subjects)))
}

# The subjects of a grouping factor: "b:a" is a, then b within a, where a is a factor, too.
subjects_of <- function(group, groups) {
  fields <- strsplit(group, ":", fixed = TRUE)[[1]]
  fields[order(!fields %in% groups)]
}

# Standard errors of functions of estimated parameters, by their linear part.
delta_se <- function(of, at, vcov) {
  if (is.null(vcov) || anyNA(vcov)) return(NULL)
  jacobian <- tryCatch(numDeriv::jacobian(of, at), error = function(e) NULL)
  if (is.null(jacobian)) return(NULL)
  variances <- rowSums((jacobian %*% vcov) * jacobian)
  ifelse(variances > 0, sqrt(pmax(variances, 0)), NA_real_)
}

# The lower triangle by rows, as numbers and as the document has it.
by_rows <- function(matrix) matrix[upper.tri(matrix, TRUE)]
lower_triangle <- function(matrix) {
  lapply(seq_len(nrow(matrix)), function(row) I(unname(matrix[row, seq_len(row)])))
}

compact <- function(list) list[!vapply(list, is.null, TRUE)]
finite <- function(x) if (length(x) == 1 && is.finite(x)) x
stop_for <- function(...) stop("hierfit: ", ..., call. = FALSE)
need <- function(package, what) {
  if (!requireNamespace(package, quietly = TRUE)) {
    stop_for(what, " needs the package ", package, "; install.packages(\"", package, "\")")
  }
}
