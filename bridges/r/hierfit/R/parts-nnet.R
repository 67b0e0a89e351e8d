# multinom of nnet.

#' @export
fit_parts.multinom <- function(fit, df = "auto") {
  frame <- tryCatch(stats::model.frame(fit), error = function(e) {
    stop_for("the data of this multinom() fit are gone; fit again with model = TRUE")
  })
  if (is.matrix(stats::model.response(frame))) {
    stop_for("a multinom() of counts has no report; give it a record for each case, or weights")
  }
  coef <- stats::coef(fit)
  if (!is.matrix(coef)) coef <- matrix(coef, 1, dimnames = list(fit$lev[-1], names(coef)))
  parts(fit, "nnet", frame = frame, terms = fit$terms, coef = coef, vcov = stats::vcov(fit),
        family = list(family = "nominal", link = "logit"),
        df.method = choose_df(df, c("asymptotic", "residual")),
        df.residual = nrow(frame) - fit$edf, contrasts = fit$contrasts,
        loglik = structure(as.numeric(stats::logLik(fit)), df = fit$edf, nobs = nrow(frame)),
        residual = residual_part(list(residual_parameter("variance", 1, fixed = TRUE))),
        predicted = as.character(stats::predict(fit, newdata = frame)), means = NULL,
        warnings = if (fit$convergence != 0) "The iterations reached their limit.",
        conditions = if (fit$convergence != 0) "not converged")
}
