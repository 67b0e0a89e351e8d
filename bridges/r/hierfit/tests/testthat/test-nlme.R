test_that("a linear mixed fit has the numbers of nlme", {
  needs("nlme", "emmeans")
  fit <- nlme::lme(distance ~ age * Sex, nlme::Orthodont, ~ age | Subject)
  x <- hierfit(fit, means = ~ Sex)
  table <- coef(summary(fit))
  rows <- expect_coefficients(x, table)
  expect_same(rows$df, table[, "DF"])
  expect_same(rows$p.value, table[, "p-value"], 1e-7)
  # All effects together have the least of their degrees of freedom, that of the effect between subjects.
  expect_equal(as.list(x)$tests$model$den.df, 25)
  matrix <- unclass(nlme::getVarCov(fit))
  expect_same(unlist(lapply(as.list(x)$random[[1]]$covariances[[1]]$matrix, unlist)),
              matrix[c(1, 2, 4)])
  means <- as.data.frame(emmeans::emmeans(fit, "Sex"))
  expect_same(tidied(x, "means")$estimate, means$emmean)
  expect_same(tidied(x, "means")$df, means$df)
})

test_that("standard errors of variances follow the engine's intervals", {
  needs("nlme")
  fit <- nlme::lme(distance ~ age * Sex, nlme::Orthodont, ~ age | Subject)
  intervals <- nlme::intervals(fit, which = "var-cov")$reStruct$Subject
  se <- vapply(as.list(hierfit(fit))$random[[1]]$parameters, `[[`, 0, "std.error")
  estimates <- vapply(as.list(hierfit(fit))$random[[1]]$parameters, `[[`, 0, "estimate")
  # An interval of a standard deviation is one of its logarithm, which is half that of the variance.
  width <- log(intervals$upper / intervals$lower)[1:2] / qnorm(.975)
  expect_equal(se[c(1, 3)] / estimates[c(1, 3)], width, tolerance = 1e-6)
})

test_that("columns that share their variance have it once", {
  needs("nlme")
  fit <- nlme::lme(score ~ Machine, nlme::Machines, list(Worker = nlme::pdCompSymm(~ 0 + Machine)))
  block <- as.list(hierfit(fit))$random[[1]]
  expected <- nlme::intervals(fit, which = "var-cov")$reStruct$Worker
  expect_equal(vapply(block$parameters, `[[`, "", "parameter"), c("CS diagonal", "CS covariance"))
  expect_same(vapply(block$parameters, `[[`, 0, "estimate"),
              expected$est.[1]^2 * c(1, expected$est.[2]), 1e-6)
  expect_equal(block$parameters[[1]]$std.error / block$parameters[[1]]$estimate,
               log(expected$upper / expected$lower)[1] / qnorm(.975), tolerance = 1e-6)
  one <- nlme::lme(score ~ Machine, nlme::Machines, list(Worker = nlme::pdIdent(~ 0 + Machine)))
  expect_equal(as.list(hierfit(one))$random[[1]]$structure, "identity")
  expect_length(as.list(hierfit(one))$random[[1]]$parameters, 1)
  both <- list(Worker = nlme::pdBlocked(list(~ 1, nlme::pdIdent(~ 0 + Machine))))
  expect_error(hierfit(nlme::lme(score ~ Machine, nlme::Machines, both)), "pdBlocked")
})

test_that("residuals have groups, correlations and standard errors", {
  needs("nlme")
  fit <- nlme::lme(distance ~ age * Sex, nlme::Orthodont, ~ 1 | Subject,
                   weights = nlme::varIdent(form = ~ 1 | Sex), correlation = nlme::corAR1())
  residual <- as.list(hierfit(fit))$residual
  expect_equal(residual$structure, "ar1")
  expect_equal(as.character(residual$groups), "Sex")
  expect_equal(vapply(residual$parameters[1:2], function(row) row$levels$Sex, ""), c("Male", "Female"))
  expect_same(residual$parameters[[1]]$estimate, fit$sigma^2)
  sd <- fit$sigma * coef(fit$modelStruct$varStruct, unconstrained = FALSE)
  expect_same(residual$parameters[[2]]$estimate, sd^2)
  expect_same(residual$parameters[[3]]$estimate,
              coef(fit$modelStruct$corStruct, unconstrained = FALSE))
  series <- nlme::gls(follicles ~ sin(2 * pi * Time) + cos(2 * pi * Time), nlme::Ovary,
                      correlation = nlme::corAR1(form = ~ 1 | Mare))
  x <- hierfit(series)
  expect_coefficients(x, coef(summary(series)))
  expect_equal(as.character(as.list(x)$residual$subjects), "Mare")
  sigma <- nlme::intervals(series)$sigma
  row <- as.list(x)$residual$parameters[[1]]
  expect_equal(row$std.error / row$estimate, log(sigma[["upper"]] / sigma[["lower"]]) / qnorm(.975),
               tolerance = 1e-6)
})

test_that("nested groups go from the outermost in", {
  needs("nlme")
  fit <- nlme::lme(yield ~ nitro * Variety, nlme::Oats, ~ 1 | Block / Variety)
  x <- hierfit(fit)
  expect_equal(lapply(as.list(x)$random, function(block) as.character(block$subjects)),
               list("Block", c("Block", "Variety")))
  expected <- as.numeric(nlme::VarCorr(fit)[c(2, 4), "Variance"])
  expect_equal(tidied(x, "random")$estimate[1:2], expected, tolerance = 1e-6)
  skip_if_not_installed("lme4")
  other <- lme4::lmer(yield ~ nitro * Variety + (1 | Block / Variety), nlme::Oats)
  expect_equal(tidied(x, "random")$estimate,
               tidied(hierfit(other, df = "asymptotic"), "random")$estimate, tolerance = 1e-4)
})
