# lm and glm of stats, glm.nb and polr of MASS.

#' @export
fit_parts.lm <- function(fit, df = "auto") {
  only_class(fit, c("lm", "aov", "glm", "mlm"))
  if (inherits(fit, "mlm")) stop_for("a fit with several targets has no report; fit each alone")
  variance <- stats::sigma(fit)^2
  left <- stats::df.residual(fit)
  linear_parts(fit, choose_df(df, c("residual", "asymptotic")),
               list(family = "gaussian", link = "identity"),
               list(residual_parameter("variance", variance, variance * sqrt(2 / left))))
}

#' @export
fit_parts.glm <- function(fit, df = "auto") {
  only_class(fit, "glm")
  family <- stats::family(fit)
  if (identical(family$family, "gaussian")) return(fit_parts.lm(fit, df))
  is_scaled <- !family$family %in% c("binomial", "poisson")
  linear_parts(fit, choose_df(df, c(if (is_scaled) "residual", "asymptotic", "residual")), family,
               list(if (is_scaled) residual_parameter("dispersion", summary(fit)$dispersion)
                    else residual_parameter("variance", 1, fixed = TRUE)))
}

#' @export
fit_parts.negbin <- function(fit, df = "auto") {
  linear_parts(fit, choose_df(df, c("asymptotic", "residual")), stats::family(fit), list(
    residual_parameter("variance", 1, fixed = TRUE),
    residual_parameter("dispersion", 1 / fit$theta, fit$SE.theta / fit$theta^2)))
}

linear_parts <- function(fit, df, family, parameters) {
  coef <- stats::coef(fit)
  parts(fit, if (inherits(fit, "negbin")) "MASS" else "stats", frame = stats::model.frame(fit),
        terms = stats::terms(fit), coef = coef[!is.na(coef)],
        vcov = stats::vcov(fit, complete = FALSE), family = family, df.method = df,
        df.residual = stats::df.residual(fit), contrasts = fit$contrasts,
        residual = residual_part(parameters), predicted = unname(fit$fitted.values),
        warnings = if (isFALSE(fit$converged)) "The algorithm did not converge.",
        conditions = if (isFALSE(fit$converged)) "not converged")
}

#' @export
fit_parts.polr <- function(fit, df = "auto") {
  if (is.null(fit$Hessian)) {
    stop_for("polr() keeps what standard errors need only with Hess = TRUE; fit again with it")
  }
  ordinal_parts(fit, "MASS", df, frame = fit$model, thresholds = fit$zeta, coef = stats::coef(fit),
                vcov = stats::vcov(fit), link = fit$method, predicted = as.character(stats::predict(fit)))
}

# A cumulative model: logit P(target <= j) = threshold j - sum of the rest. `vcov` has names.
ordinal_parts <- function(fit, engine, df, frame, thresholds, coef, vcov, link, predicted,
                          terms = stats::terms(fit), random = list(), ...) {
  order <- c(names(thresholds), names(coef))
  left <- sum(if (is.null(stats::model.weights(frame))) rep(1, nrow(frame))
              else stats::model.weights(frame)) - attr(stats::logLik(fit), "df")
  parts(fit, engine, frame = frame, terms = terms, coef = coef, thresholds = thresholds,
        vcov = vcov[order, order, drop = FALSE], family = list(family = "ordinal", link = link),
        df.method = choose_df(df, c("asymptotic", "residual")), df.residual = left,
        predicted = predicted, contrasts = fit$contrasts, random = random,
        residual = residual_part(list(residual_parameter("variance", 1, fixed = TRUE)), random), ...)
}
