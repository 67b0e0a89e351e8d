# Writes the data of the tests, and the numbers of other programs that the tests hold:
#   Rscript reference.R        in this folder, with lme4, lmerTest, glmmTMB, emmeans, numDeriv, MASS, jsonlite
suppressMessages({
  library(lme4)
  library(glmmTMB)
  library(emmeans)
})
data_sets <- list(sleepstudy = sleepstudy, pastes = Pastes[c("strength", "batch", "cask")],
                  penicillin = Penicillin, cbpp = cbpp,
                  cake = cake[c("recipe", "replicate", "temp", "angle")])
for (name in names(data_sets))
  write.csv(data_sets[[name]], paste0(name, ".csv"), row.names = FALSE, quote = FALSE)

# Variances with their standard errors, from the Hessian of the Laplace approximation that TMB has by
# automatic differentiation (exact for a normal target), by the delta method.
variances <- function(formula, data, reml) {
  fit <- glmmTMB(formula, data = data, REML = reml)
  full <- vcov(fit, full = TRUE)
  own <- grepl("^(d~|disp~|theta_)", rownames(full))
  vcov <- full[own, own]
  at <- fit$fit$par[names(fit$fit$par) %in% c("theta", "betadisp", "betad")]
  blocks <- function(at) {
    scale <- at[names(at) != "theta"]
    theta <- at[names(at) == "theta"]
    random <- if (length(theta) == 3) {
      sd <- exp(theta[1:2])
      rho <- theta[3] / sqrt(1 + theta[3]^2)
      c(sd[1]^2, rho * sd[1] * sd[2], sd[2]^2)
    } else exp(2 * theta)
    unname(c(random, exp(scale * if (packageVersion("glmmTMB") < "1.1.6") 1 else 2)))
  }
  order <- c(which(names(at) != "theta"), which(names(at) == "theta"))
  slopes <- numDeriv::jacobian(function(x) blocks(setNames(x, names(at))), at)[, order]
  list(estimate = blocks(at), std.error = sqrt(diag(slopes %*% vcov %*% t(slopes))),
       fixed = unname(fixef(fit)$cond), fixed.se = unname(sqrt(diag(vcov(fit)$cond))),
       logLik = as.numeric(logLik(fit)))
}

table_of <- function(means, ...) {
  frame <- as.data.frame(summary(means, ...))
  names(frame) <- sub("^(response|emmean|prob|rate)$", "estimate", names(frame))
  low <- grep("(LCL|lower.CL)$", names(frame))
  high <- grep("(UCL|upper.CL)$", names(frame))
  list(estimate = frame$estimate, std.error = frame$SE, conf.low = frame[[low]],
       conf.high = frame[[high]], p.value = frame$p.value)
}

cake$id <- with(cake, paste0(recipe, replicate))
cake$quality <- cut(cake$angle, c(0, 25, 32, 38, 90), labels = c("a", "b", "c", "d"))
cake_fit <- lmer(angle ~ recipe * factor(temp) + (1 | id), cake)
cake_means <- emmeans(cake_fit, ~ recipe | temp, lmer.df = "asymptotic")
cake_tests <- anova(lmerTest::as_lmerModLmerTest(cake_fit), type = 3)

cbpp_fit <- glm(cbind(incidence, size - incidence) ~ period, binomial, cbpp,
                control = list(epsilon = 1e-14))
cbpp_means <- emmeans(cbpp_fit, ~ period)
cbpp_pairs <- function(adjust) table_of(contrast(regrid(cbpp_means), "pairwise"), adjust = adjust,
                                        infer = TRUE)
old <- options(contrasts = c("contr.sum", "contr.poly"))
slopes_fit <- lm(angle ~ recipe * temp, cake)
slopes_tests <- drop1(slopes_fit, . ~ ., test = "F")
options(old)
log_means <- emmeans(glm(angle ~ recipe + temp, Gamma("log"), cake,
                         control = list(epsilon = 1e-14)), ~ recipe)
polr_fit <- MASS::polr(quality ~ recipe + temp, cake, Hess = TRUE, control = list(reltol = 1e-14))

reference <- list(
  programs = list(R = as.character(getRversion()), lme4 = as.character(packageVersion("lme4")),
                  glmmTMB = as.character(packageVersion("glmmTMB")),
                  emmeans = as.character(packageVersion("emmeans")),
                  MASS = as.character(packageVersion("MASS"))),
  variances = list(
    sleepstudy = variances(Reaction ~ Days + (Days | Subject), sleepstudy, TRUE),
    sleepstudy.ml = variances(Reaction ~ Days + (Days | Subject), sleepstudy, FALSE),
    pastes = variances(strength ~ 1 + (1 | batch / cask), Pastes, TRUE),
    penicillin = variances(diameter ~ 1 + (1 | plate) + (1 | sample), Penicillin, TRUE)),
  cake = list(means = table_of(cake_means), holm = table_of(pairs(cake_means), adjust = "holm",
                                                            infer = TRUE),
              f = cake_tests[["F value"]], df = cake_tests$NumDF),
  cbpp = list(means = table_of(cbpp_means, type = "response"),
              bonferroni = cbpp_pairs("bonferroni"), sidak = cbpp_pairs("sidak"),
              deviation = table_of(contrast(regrid(cbpp_means), "eff"), adjust = "none",
                                   infer = TRUE)),
  slopes = list(f = slopes_tests[["F value"]][-1], df = slopes_tests$Df[-1]),
  log.means = table_of(log_means, type = "response"),
  polr = list(estimate = unname(c(polr_fit$zeta, coef(polr_fit))),
              std.error = unname(sqrt(diag(vcov(polr_fit)))[c(4:6, 1:3)]),
              logLik = as.numeric(logLik(polr_fit))))
writeLines(jsonlite::toJSON(reference, digits = I(12), auto_unbox = TRUE),
           "reference.json")
