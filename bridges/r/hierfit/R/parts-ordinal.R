# clm and clmm of ordinal.

#' @export
fit_parts.clm <- function(fit, df = "auto") {
  only_class(fit, c("clm", "sclm"))
  if (length(fit$alpha.mat) && nrow(fit$alpha.mat) > 1) {
    stop_for("a clm() with nominal effects has thresholds that no report has a place for; ",
             "move them to the formula")
  }
  # Structured thresholds are linear in what was estimated.
  thresholds <- stats::setNames(as.vector(fit$tJac %*% fit$alpha), rownames(fit$tJac))
  beta <- fit$beta[!is.na(fit$beta)]
  size <- length(fit$alpha)
  vcov <- stats::vcov(fit)
  keep <- c(seq_len(size), match(names(beta), colnames(vcov)))
  map <- block_diagonal(list(as.matrix(fit$tJac), diag(length(beta))))
  vcov <- map %*% vcov[keep, keep] %*% t(map)
  dimnames(vcov) <- rep(list(c(names(thresholds), names(beta))), 2)
  ordinal_parts(fit, "ordinal", df, frame = stats::model.frame(fit), thresholds = thresholds,
                coef = beta, vcov = vcov, link = fit$link, terms = location_terms(fit),
                predicted = as.character(stats::predict(fit, type = "class")$fit),
                notes = if (length(fit$zeta)) paste("The model has scale effects:",
                                                    paste(names(fit$zeta), collapse = ", ")),
                warnings = if (fit$convergence$code != 0) fit$message,
                conditions = if (fit$convergence$code > 0) "not converged")
}

#' @export
fit_parts.clmm <- function(fit, df = "auto") {
  frame <- fit$model
  thresholds <- fit$alpha
  if (length(thresholds) != length(fit$y.levels) - 1) {
    stop_for("a clmm() with structured thresholds has no report; use threshold = \"flexible\"")
  }
  beta <- fit$beta
  vcov <- stats::vcov(fit)
  columns <- lapply(fit$ST, colnames)
  sizes <- lengths(columns)
  last <- utils::tail(as.vector(fit$optRes$par), length(unlist(lapply(fit$ST, by_rows))))
  variances <- lapply(ordinal::VarCorr(fit), function(one) matrix(one, nrow(one)))
  # One block is estimated as a log standard deviation, several as standard deviations.
  forms <- list(function(at) exp(2 * at), function(at) at^2)
  fits <- vapply(forms, function(form) {
    all(sizes == 1) && isTRUE(all.equal(form(last), unlist(variances), tolerance = 1e-6,
                                        check.attributes = FALSE))
  }, TRUE)
  known <- any(fits) && all(unlist(variances) > 1e-6) && nrow(vcov) == length(fit$optRes$par)
  own <- if (known) nrow(vcov) - length(last) + seq_along(last)
  blocks <- random_blocks(
    stats::formula(fit), frame, columns, at = last,
    sigma_of = function(block) function(at) {
      if (any(fits)) matrix(forms[[which(fits)[1]]](at[block])) else variances[[block]]
    },
    vcov = if (known) vcov[own, own, drop = FALSE])
  ordinal_parts(fit, "ordinal", df, frame = frame, thresholds = thresholds, coef = beta, vcov = vcov,
                link = fit$link,
                predicted = fit$y.levels[max.col(clmm_chances(fit, thresholds), "first")],
                terms = location_terms(fit), random = blocks,
                notes = if (!known) paste("Covariance parameters have no standard errors: a variance is",
                                          "zero, or a block has slopes."))
}

# The terms of what moves the target, which may stand beside those of scale and nominal effects.
location_terms <- function(fit) if (inherits(fit$terms, "terms")) fit$terms else fit$terms[[1]]

# ordinal has no predict() for clmm: the probability of each category at the conditional modes.
clmm_chances <- function(fit, thresholds) {
  frame <- fit$model
  link <- list(logit = stats::plogis, probit = stats::pnorm, cauchit = stats::pcauchy,
               loglog = function(x) exp(-exp(-x)), cloglog = function(x) -expm1(-exp(x)))[[fit$link]]
  design <- design_of(location_terms(fit), frame, fit$contrasts)
  linear <- as.vector(design$matrix[, names(fit$beta), drop = FALSE] %*% fit$beta)
  bars <- find_bars(stats::formula(fit))
  modes <- ordinal::ranef(fit)
  for (at in seq_along(modes)) {
    group <- names(modes)[at]
    own <- bar_design(bars, colnames(fit$ST[[at]]), group, frame)$matrix
    rows <- match(as.character(eval(str2lang(group), frame)), rownames(modes[[at]]))
    linear <- linear + rowSums(own * as.matrix(modes[[at]])[rows, , drop = FALSE])
  }
  below <- vapply(thresholds, function(threshold) link(threshold - linear), linear)
  cbind(below, 1) - cbind(0, below)
}
