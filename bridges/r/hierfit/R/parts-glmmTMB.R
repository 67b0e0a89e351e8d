# glmmTMB.

#' @export
fit_parts.glmmTMB <- function(fit, df = "auto") {
  family <- stats::family(fit)
  info <- fit$modelInfo
  usable <- isTRUE(fit$sdr$pdHess)
  full <- if (usable) suppressWarnings(stats::vcov(fit, full = TRUE))
  blocks <- tmb_blocks(fit, full)
  has <- function(formula, none) !identical(deparse1(formula), none)
  parts(fit, "glmmTMB", frame = fit$frame, terms = info$terms$cond$fixed,
        coef = glmmTMB::fixef(fit)$cond, vcov = stats::vcov(fit)$cond, family = family,
        df.method = choose_df(df, c("asymptotic", "residual")), df.residual = stats::df.residual(fit),
        contrasts = attr(glmmTMB::getME(fit, "X"), "contrasts"), random = blocks,
        residual = residual_part(tmb_residual(fit, family$family, full), blocks),
        means = list(component = "cond"),
        notes = c(
          if (has(info$allForm$ziformula, "~0")) sprintf(
            "The model has zero inflation (%s); tables hold its conditional part.",
            deparse1(info$allForm$ziformula)),
          if (has(info$allForm$dispformula, "~1")) sprintf(
            "The dispersion has a model of its own (%s).", deparse1(info$allForm$dispformula)),
          if (info$REML) "Fitted by restricted maximum likelihood (REML).",
          if (!usable) "The Hessian is not positive definite: there are no standard errors to rely on."),
        warnings = if (fit$fit$convergence != 0) fit$fit$message,
        conditions = c(if (fit$fit$convergence != 0) "not converged",
                       if (!usable) "covariance estimates doubtful"))
}

tmb_structures <- c(us = "unstructured", diag = "diagonal", cs = "compound symmetry", ar1 = "ar1",
                    toep = "toeplitz")

tmb_blocks <- function(fit, full) {
  structure <- fit$modelInfo$reStruc$condReStruc
  if (!length(structure)) return(list())
  columns <- fit$modelInfo$reTrms$cond$cnms
  words <- vapply(structure, function(one) names(one$blockCode), "")
  words <- ifelse(words %in% names(tmb_structures), tmb_structures[words], "other")
  words[lengths(columns) == 1] <- "variance components"
  parameters <- fit$fit$parfull
  # Zero inflation may have random effects, too; their parameters come behind.
  counts <- vapply(structure, function(one) one$blockNumTheta, 0)
  theta <- which(names(parameters) == "theta")[seq_len(sum(counts))]
  at <- unname(parameters[theta])
  vcov <- if (!is.null(full)) {
    own <- grep("^theta", rownames_of(full))[seq_along(theta)]
    if (!anyNA(own)) full[own, own, drop = FALSE]
  }
  reported <- function(at) {
    parameters[theta] <- at
    fit$obj$env$report(parameters)
  }
  sigma_of <- function(block) function(at) {
    now <- reported(at)
    sd <- now$sd[[block]]
    correlation <- now$corr[[block]]
    if (length(correlation) != length(sd)^2) correlation <- diag(length(sd))  # "diag" has none
    correlation * outer(sd, sd)
  }
  random_blocks(fit$modelInfo$allForm$formula, fit$frame, columns, sigma_of, at, vcov, unname(words),
                parameters_of = function(block, design) {
                  tmb_parameters(words[block], function(at) sigma_of(block)(at), at, vcov)
                })
}

# The names that a full covariance has for its parts: they are in its dimnames' names or in itself.
rownames_of <- function(matrix) {
  names <- names(rownames(matrix))
  if (is.null(names)) rownames(matrix) else names
}

# The parameters of structures that are not told by variances and covariances.
tmb_parameters <- function(word, of, at, vcov) {
  if (!word %in% c("ar1", "compound symmetry")) return(NULL)
  size <- nrow(of(at))
  values <- function(at) {
    matrix <- of(at)
    c(if (word == "ar1") matrix[1, 1] else diag(matrix),
      matrix[2, 1] / sqrt(matrix[1, 1] * matrix[2, 2]))
  }
  estimates <- values(at)
  se <- delta_se(values, at, vcov)
  names <- if (word == "ar1") c("AR1 diagonal", "AR1 rho") else c(rep("variance", size), "CS rho")
  lapply(seq_along(estimates), function(line) {
    compact(list(parameter = names[line],
                 terms = if (names[line] == "variance") I(line - 1L),
                 estimate = estimates[line], std.error = finite(se[line])))
  })
}

# The scale of the residuals by family: how it hangs on the parameter of the dispersion model, which
# is estimated as a logarithm.
tmb_residual <- function(fit, family, full) {
  fixed <- list(residual_parameter("variance", 1, fixed = TRUE))
  if (family %in% c("binomial", "poisson", "truncated_poisson")) return(fixed)
  log_scale <- unname(fit$fit$parfull[names(fit$fit$parfull) == "betad"])
  if (length(log_scale) != 1) return(if (family == "gaussian") list() else fixed)
  sign <- if (family %in% c("nbinom2", "truncated_nbinom2", "Gamma")) -1 else 1
  estimate <- exp(sign * log_scale)
  own <- if (!is.null(full)) grep("^d~|^disp", rownames(full))
  se <- if (length(own) == 1) estimate * sqrt(full[own, own])
  if (family == "gaussian") list(residual_parameter("variance", estimate, se))
  else c(if (family != "Gamma") fixed, list(residual_parameter("dispersion", estimate, se)))
}
