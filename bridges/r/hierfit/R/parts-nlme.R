# lme and gls of nlme.

#' @export
fit_parts.lme <- function(fit, df = "auto") {
  only_class(fit, "lme")
  df <- choose_df(df, c("containment", "asymptotic"))
  structures <- fit$modelStruct
  # From the outermost group in; the parameters are those of the innermost first.
  groups <- rev(names(structures$reStruct))
  frame <- nlme_frame(fit, c(groups, unlist(lapply(stats::formula(structures$reStruct), all.vars))))
  parameters <- nlme_parameters(fit)
  blocks <- lapply(seq_along(groups), function(at) {
    nlme_block(fit, structures$reStruct[[groups[at]]], groups[seq_len(at)], groups[at], frame, parameters)
  })
  contest <- if (df == "containment") {
    wald(nlme::fixef(fit), stats::vcov(fit), function(hypotheses) {
      min(fit$fixDF$X[colSums(hypotheses != 0) > 0])
    })
  }
  parts(fit, "nlme", frame = frame, terms = stats::terms(fit), coef = nlme::fixef(fit),
        vcov = stats::vcov(fit), family = list(family = "gaussian", link = "identity"),
        df.method = df, contest = contest, contrasts = fit$contrasts, random = blocks,
        residual = nlme_residual(fit, blocks, parameters), predicted = unname(stats::fitted(fit)),
        means = if (df == "containment") list(mode = "containment") else list(),
        notes = nlme_notes(fit, parameters))
}

#' @export
fit_parts.gls <- function(fit, df = "auto") {
  only_class(fit, "gls")
  left <- fit$dims$N - fit$dims$p
  parameters <- nlme_parameters(fit)
  parts(fit, "nlme", frame = nlme_frame(fit), terms = stats::terms(stats::formula(fit)),
        coef = stats::coef(fit), vcov = stats::vcov(fit),
        family = list(family = "gaussian", link = "identity"),
        df.method = choose_df(df, c("residual", "asymptotic")), df.residual = left,
        contrasts = fit$contrasts, residual = nlme_residual(fit, list(), parameters),
        predicted = unname(as.vector(stats::fitted(fit))), notes = nlme_notes(fit, parameters))
}

# The model frame, with the variables of the groups and of the residuals beside those of the formula.
nlme_frame <- function(fit, others = NULL) {
  data <- as.data.frame(nlme::getData(fit))
  structures <- fit$modelStruct
  others <- c(others, unlist(lapply(c("corStruct", "varStruct"), function(name) {
    if (is.null(structures[[name]])) NULL else all.vars(stats::formula(structures[[name]]))
  })))
  terms <- if (inherits(fit, "lme")) stats::terms(fit) else stats::terms(stats::formula(fit))
  frame <- stats::model.frame(terms, data, na.action = stats::na.pass, drop.unused.levels = TRUE)
  for (name in setdiff(intersect(others, names(data)), names(frame))) frame[[name]] <- data[[name]]
  frame
}

# What was estimated of the covariance, on scales without bounds, and its covariance.
nlme_parameters <- function(fit) {
  vcov <- fit$apVar
  if (!is.matrix(vcov)) return(NULL)
  at <- attr(vcov, "Pars")
  list(at = unname(at), names = names(at), vcov = matrix(vcov, nrow(vcov)))
}

nlme_notes <- function(fit, parameters) {
  why <- if (is.character(fit$apVar)) fit$apVar[1] else "the fit has no apVar"
  c(if (is.null(parameters)) paste0("Covariance parameters have no standard errors: ", why, "."),
    if (fit$method == "REML") "Fitted by restricted maximum likelihood (REML).")
}

# A block: its matrix, and standard errors where the package knows the scales of its parameters, which
# it tells by whether they come to the matrix of the fit.
nlme_block <- function(fit, struct, groups, name, frame, parameters) {
  if (inherits(struct, "pdBlocked")) {
    stop_for("random effects of class pdBlocked have no report; give each block a list element of its own")
  }
  matrix <- unname(as.matrix(nlme::pdMatrix(struct))) * fit$sigma^2
  size <- nrow(matrix)
  own <- grep(sprintf("^reStruct\\.%s[0-9]*$", gsub("([.()])", "\\\\\\1", name)), parameters$names)
  of <- nlme_matrix(struct, size)
  known <- length(own) > 0 && isTRUE(all.equal(of(parameters$at[own]), matrix, tolerance = 1e-4,
                                               check.attributes = FALSE))
  se <- if (known) delta_se(function(at) by_rows(of(at)), parameters$at[own],
                            parameters$vcov[own, own, drop = FALSE])
  design <- design_of(stats::terms(stats::formula(struct)), frame, fit$contrasts)
  word <- if (size > 1) c(pdIdent = "identity", pdDiag = "diagonal",
                          pdCompSymm = "compound symmetry")[class(struct)[1]]
  word <- if (length(word) && !is.na(word)) unname(word)
  block(groups, matrix, design, se, word, nlme_common_rows(word, matrix, se))
}

# The parameters of structures whose columns share their variance.
nlme_common_rows <- function(word, matrix, se) {
  if (!identical(word, "identity") && !identical(word, "compound symmetry")) return(NULL)
  row <- function(name, cell) {
    compact(list(parameter = name, estimate = by_rows(matrix)[cell], std.error = finite(se[cell])))
  }
  if (word == "identity") list(row("ID diagonal", 1)) else list(row("CS diagonal", 1), row("CS covariance", 2))
}

nlme_matrix <- function(struct, size) {
  if (inherits(struct, "pdIdent")) function(at) exp(2 * at) * diag(size)
  else if (inherits(struct, "pdCompSymm")) function(at) {
    # A logarithm, and a logit of the correlation between its bounds.
    rho <- (exp(at[2]) - 1 / (size - 1)) / (1 + exp(at[2]))
    exp(2 * at[1]) * (diag(1 - rho, size) + rho)
  }
  else if (inherits(struct, "pdDiag") || size == 1) function(at) diag(exp(2 * at), size)
  else function(at) tryCatch(unname(as.matrix(nlme::pdMatrix(nlme::pdNatural(at)))),
                             error = function(e) NULL)
}

nlme_correlations <- rbind(c("corAR1", "ar1", "AR1 rho"), c("corCAR1", "ar1", "AR1 rho"),
                           c("corCompSymm", "compound symmetry", "CS rho"),
                           c("corSymm", "unstructured", "Corr"), c("corARMA", "other", "ARMA"))

# The residuals: one variance, or one for each group of varIdent, and the parameters of a correlation.
nlme_residual <- function(fit, blocks, parameters) {
  structures <- fit$modelStruct
  correlation <- structures$corStruct
  row <- nlme_correlations[nlme_correlations[, 1] == class(correlation)[1], ]
  se_of <- function(pattern, of) {
    own <- grep(pattern, parameters$names)
    if (length(own)) delta_se(of, parameters$at[own], parameters$vcov[own, own, drop = FALSE])
  }
  variances <- nlme_variances(fit, structures$varStruct, se_of)
  rows <- if (!is.null(correlation)) {
    estimates <- stats::coef(correlation, unconstrained = FALSE)
    se <- se_of("^corStruct", nlme_coef(correlation))
    labels <- if (length(row)) row[3] else class(correlation)[1]
    if (length(estimates) > 1) labels <- paste(labels, seq_along(estimates))
    Map(function(label, estimate, se) residual_parameter(label, estimate, se), labels,
        unname(estimates), if (is.null(se)) rep(NA_real_, length(estimates)) else se)
  }
  subjects <- if (!is.null(correlation)) all.vars(nlme::getGroupsFormula(correlation))
  residual <- residual_part(
    c(variances$rows, unname(rows)), blocks, groups = variances$groups,
    structure = if (length(row)) row[2] else if (!is.null(correlation)) "other"
                else if (length(variances$groups)) "diagonal" else "identity")
  if (is.null(residual$subjects) && length(subjects)) residual$subjects <- I(subjects)
  residual
}

nlme_coef <- function(structure) {
  set <- utils::getFromNamespace("coef<-", "nlme")
  function(at) as.vector(stats::coef(set(structure, value = at), unconstrained = FALSE))
}

nlme_variances <- function(fit, weights, se_of) {
  variance <- fit$sigma^2
  if (is.null(weights) || !inherits(weights, "varIdent")) {
    rows <- list(residual_parameter("variance", variance,
                                    se_of("^lSigma", function(at) exp(2 * at))))
    if (!is.null(weights)) {
      estimates <- stats::coef(weights, unconstrained = FALSE)
      se <- se_of("^varStruct", nlme_coef(weights))
      rows <- c(rows, lapply(seq_along(estimates), function(at) {
        residual_parameter(paste(class(weights)[1], names(estimates)[at]), estimates[[at]], se[at])
      }))
    }
    return(list(rows = rows))
  }
  groups <- all.vars(nlme::getGroupsFormula(weights))
  ratios <- stats::coef(weights, unconstrained = FALSE, allCoef = TRUE)
  free <- which(!attr(weights, "whichFix"))
  se <- se_of("^(varStruct|lSigma)", function(at) {
    ratios[-1][free] <- exp(at[-length(at)])
    (exp(at[length(at)]) * ratios)^2
  })
  list(groups = I(groups), rows = lapply(seq_along(ratios), function(at) {
    levels <- stats::setNames(as.list(strsplit(names(ratios)[at], "*", fixed = TRUE)[[1]]), groups)
    residual_parameter("variance", variance * ratios[[at]]^2, se[at], levels = levels)
  }))
}
