test_that("a cumulative mixed fit has thresholds, levels and standard errors", {
  needs("ordinal", "emmeans")
  wine <- ordinal::wine
  fit <- ordinal::clmm(rating ~ temp + contact + (1 | judge), wine)
  x <- hierfit(fit, means = ~ temp)
  expect_coefficients(x, coef(summary(fit)))
  expect_equal(as.list(x)$coefficients[[1]]$threshold, "1")
  expect_same(tidied(x, "random")$estimate[1], ordinal::VarCorr(fit)$judge)
  # An older function of the same package has a likelihood of its own.
  suppressPackageStartupMessages(library(ordinal))  # which it looks for on the search path
  other <- ordinal::clmm2(rating ~ temp + contact, random = judge, data = wine, Hess = TRUE)
  se <- sqrt(diag(vcov(other)))
  expect_equal(tidied(x, "random")$std.error[1], 2 * other$stDev[[1]]^2 * se[[length(se)]],
               tolerance = 1e-3)
  expect_same(tidied(x, "means")$estimate, as.data.frame(emmeans::emmeans(fit, "temp"))$emmean)
  expect_null(as.list(x)$grand.mean)
  chances <- hierfit:::clmm_chances(fit, fit$alpha)
  expect_same(chances[cbind(1:72, as.integer(wine$rating))], fitted(fit))
  two <- ordinal::clmm(rating ~ temp + (1 | judge) + (1 | bottle), wine)
  matrices <- lapply(as.list(hierfit(two))$random, function(block) block$covariances[[1]]$matrix[[1]])
  expect_same(unlist(matrices), unlist(ordinal::VarCorr(two)), 1e-6)
})

test_that("cumulative fits without random effects agree", {
  needs("ordinal", "MASS")
  fit <- ordinal::clm(rating ~ temp * contact, data = ordinal::wine)
  x <- hierfit(fit)
  expect_coefficients(x, coef(summary(fit)))
  expect_equal(as.list(x)$data$predicted, as.character(predict(fit, type = "class")$fit),
               ignore_attr = TRUE)
  even <- ordinal::clm(rating ~ temp, data = ordinal::wine, threshold = "equidistant")
  rows <- tidied(hierfit(even))
  expect_same(rows$estimate[1:4], even$Theta)
  expect_same(rows$std.error[c(1, 5)], coef(summary(even))[c(1, 3), 2])
  other <- MASS::polr(rating ~ temp * contact, ordinal::wine, Hess = TRUE)
  expect_equal(tidied(hierfit(other))$estimate, tidied(x)$estimate, tolerance = 1e-3)
  table <- coef(summary(other))
  rows <- tidied(hierfit(other))
  expect_same(rows$estimate[5:7], table[1:3, 1])
  expect_same(rows$std.error[1:4], table[4:7, 2])
  expect_error(hierfit(MASS::polr(rating ~ temp, ordinal::wine)), "Hess = TRUE")
})

test_that("a nominal fit has a set of rows for each category but the first", {
  needs("nnet")
  fit <- nnet::multinom(Species ~ Sepal.Length + Sepal.Width, iris, trace = FALSE)
  x <- hierfit(fit)
  table <- summary(fit)
  expect_same(tidied(x)$estimate, t(table$coefficients))
  expect_same(tidied(x)$std.error, t(table$standard.errors))
  expect_equal(unique(tidied(x)$y.level), c("versicolor", "virginica"))
  expect_equal(as.list(x)$target$reference, "setosa")
  at <- c(2, 5)
  b <- t(coef(fit))[at]
  expect_same(tidied(x, "tests")$statistic[2], drop(b %*% solve(vcov(fit)[at, at], b)) / 2, 1e-6)
  expect_error(hierfit(fit, means = ~ Sepal.Length), "no means")
})
