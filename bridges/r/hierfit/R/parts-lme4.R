# lme4 and lmerTest.

#' @export
fit_parts.lmerMod <- function(fit, df = "auto") {
  has_test <- requireNamespace("lmerTest", quietly = TRUE)
  # The conversion is dear and serves degrees of freedom, means and standard errors of variances.
  own <- inherits(fit, "lmerModLmerTest")
  is_small <- stats::nobs(fit) <= 5000
  note <- if (df == "auto" && !own && !is_small) paste(
    "Degrees of freedom are asymptotic, as the fit has more than 5000 records;",
    "df = \"satterthwaite\" reckons them.")
  if (!is.null(note)) df <- "asymptotic"
  df <- choose_df(df, c(if (has_test) "satterthwaite",
                        if (has_test && lme4::isREML(fit) &&
                          requireNamespace("pbkrtest", quietly = TRUE)) "kenward-roger",
                        "residual", "asymptotic"))
  if (has_test && !own && (df %in% c("satterthwaite", "kenward-roger") || is_small)) {
    fit <- tryCatch(suppressMessages(lmerTest::as_lmerModLmerTest(fit)), error = function(e) fit)
    own <- inherits(fit, "lmerModLmerTest")
  }
  vcov <- if (df == "kenward-roger") pbkrtest::vcovAdj(fit) else stats::vcov(fit)
  contest <- if (df %in% c("satterthwaite", "kenward-roger")) function(hypotheses) {
    test <- lmerTest::contestMD(fit, hypotheses, ddf = c(satterthwaite = "Satterthwaite",
                                                         "kenward-roger" = "Kenward-Roger")[[df]])
    list(statistic = test[["F value"]], num.df = test$NumDF, den.df = test$DenDF)
  }
  theta <- lme4::getME(fit, "theta")
  varpar <- c(theta, stats::sigma(fit))
  varpar_vcov <- if (own && !lme4::isSingular(fit)) fit@vcov_varpar
  lme4_parts(fit, df, contest, vcov, family = list(family = "gaussian", link = "identity"),
             blocks = lme4_blocks(fit, varpar, varpar_vcov),
             parameters = list(residual_parameter(
               "variance", stats::sigma(fit)^2,
               delta_se(function(at) at[length(at)]^2, varpar, varpar_vcov))),
             means = list(lmer.df = if (df %in% c("satterthwaite", "kenward-roger")) df else "asymptotic",
                          lmerTest.limit = Inf, pbkrtest.limit = Inf), notes = note)
}

#' @export
fit_parts.glmerMod <- function(fit, df = "auto") {
  df <- choose_df(df, c("asymptotic", "residual"))
  family <- stats::family(fit)
  has_scale <- !grepl("^(binomial|poisson|Negative)", family$family)
  theta <- lme4::getME(fit, "theta")
  # The Hessian is that of the deviance by theta and the coefficients; of a family with a scale it
  # lacks the scale.
  hessian <- fit@optinfo$derivs$Hessian
  usable <- !is.null(hessian) && !has_scale && !lme4::isSingular(fit) &&
    nrow(hessian) == length(theta) + length(lme4::fixef(fit))
  vcov_theta <- if (usable) 2 * solve(hessian)[seq_along(theta), seq_along(theta), drop = FALSE]
  negative_binomial <- grepl("^Negative", family$family)
  lme4_parts(fit, df, NULL, stats::vcov(fit), family, blocks = lme4_blocks(fit, theta, vcov_theta),
             parameters = compact(list(
               if (has_scale) residual_parameter("dispersion", stats::sigma(fit)^2)
               else residual_parameter("variance", 1, fixed = TRUE),
               if (negative_binomial)
                 residual_parameter("dispersion", 1 / lme4::getME(fit, "glmer.nb.theta")))))
}

lme4_parts <- function(fit, df, contest, vcov, family, blocks, parameters, means = list(), notes = NULL) {
  messages <- unlist(fit@optinfo$conv$lme4$messages)
  is_singular <- lme4::isSingular(fit)
  lacks_se <- !is_singular && is.null(blocks[[1]]$parameters[[1]]$std.error)
  parts(fit, "lme4", frame = fit@frame, terms = stats::terms(fit), coef = lme4::fixef(fit),
        vcov = vcov, family = family, df.method = df, contest = contest,
        df.residual = stats::df.residual(fit),
        contrasts = attr(lme4::getME(fit, "X"), "contrasts"), random = blocks,
        residual = residual_part(parameters, blocks), means = means,
        warnings = c(messages[!grepl("singular", messages)], unlist(fit@optinfo$warnings)),
        notes = c(notes, if (is_singular) singular_note, if (lacks_se) lme4_no_se[[class_of(fit)]],
                  if (!class(fit)[1] %in% c("lmerMod", "lmerModLmerTest", "glmerMod"))
                    sprintf("The fit is a %s, which may have priors.", class(fit)[1]),
                  if (lme4::isREML(fit)) "Fitted by restricted maximum likelihood (REML)."),
        conditions = c(if (is_singular) "covariance values doubtful",
                       if (any(grepl("converge", messages)) || any(fit@optinfo$conv$opt != 0))
                         "not converged"))
}

class_of <- function(fit) if (inherits(fit, "glmerMod")) "glmerMod" else "lmerMod"
lme4_no_se <- c(
  lmerMod = paste("Covariance parameters have no standard errors; lmerTest reckons them for fits of up to",
                  "5000 records, for larger ones with df = \"satterthwaite\"."),
  glmerMod = paste("Covariance parameters have no standard errors: the family has a scale, or the fit",
                   "keeps no Hessian of them."))

# `at` is theta, with sigma behind it if that was estimated along with it; `vcov` is its covariance.
lme4_blocks <- function(fit, at, vcov) {
  columns <- lme4::getME(fit, "cnms")
  sizes <- lengths(columns)
  counts <- sizes * (sizes + 1) / 2
  places <- split(seq_len(sum(counts)), rep(seq_along(sizes), counts))
  random_blocks(stats::formula(fit), fit@frame, columns, sigma_of = function(block) function(at) {
    scale <- if (length(at) > sum(counts)) at[length(at)] else stats::sigma(fit)
    factor <- matrix(0, sizes[block], sizes[block])
    factor[lower.tri(factor, TRUE)] <- at[places[[block]]]
    tcrossprod(factor) * scale^2
  }, at = at, vcov = vcov)
}
