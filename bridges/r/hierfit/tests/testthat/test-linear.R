test_that("linear fits have the numbers of summary()", {
  fit <- lm(breaks ~ wool * tension, warpbreaks)
  x <- hierfit(fit)
  rows <- expect_coefficients(x, coef(summary(fit)))
  expect_same(rows$p.value, coef(summary(fit))[, 4])
  by_sums <- lm(breaks ~ wool * tension, warpbreaks,
                contrasts = list(wool = "contr.sum", tension = "contr.sum"))
  expected <- drop1(by_sums, . ~ ., test = "F")
  expect_same(tidied(x, "tests")$statistic[-1], expected$`F value`[-1])
  expect_same(tidied(x, "tests")$statistic[1], summary(fit)$fstatistic[1])
  skip_if_not_installed("glmmTMB")
  other <- glmmTMB::glmmTMB(breaks ~ wool * tension, warpbreaks, REML = TRUE)
  expect_equal(tidied(x, "random")$std.error, tidied(hierfit(other), "random")$std.error,
               tolerance = 1e-4)
})

test_that("generalized linear fits have the numbers of summary()", {
  counts <- glm(count ~ spray, poisson, InsectSprays)
  rows <- expect_coefficients(hierfit(counts), coef(summary(counts)))
  expect_same(rows$p.value, coef(summary(counts))[, 4])
  times <- glm(breaks ~ wool + tension, Gamma, warpbreaks)
  x <- hierfit(times)
  rows <- expect_coefficients(x, coef(summary(times)))
  expect_same(rows$p.value, coef(summary(times))[, 4])
  expect_equal(as.list(x)[c("link", "link.parameter")], list(link = "power", link.parameter = -1))
  quasi <- hierfit(glm(count ~ spray, quasipoisson, InsectSprays))
  expect_match(as.character(as.list(quasi)$engine$notes), "Quasi", all = FALSE)
  expect_null(as.list(quasi)$statistics)
})

test_that("negative binomial fits have their dispersion, nested effects their nesting", {
  needs("MASS")
  fit <- MASS::glm.nb(Days ~ Sex / (Age + Eth * Lrn), MASS::quine)
  x <- hierfit(fit)
  expect_coefficients(x, coef(summary(fit)))
  expect_same(as.list(x)$residual$parameters[[2]]$std.error, fit$SE.theta / fit$theta^2)
  effect <- as.list(x)$fixed$effects[[2]]
  expect_equal(lapply(effect, as.vector), list(fields = c("Age", "Sex"), nesting = 0:1))
  empty <- hierfit(MASS::glm.nb(Days ~ Eth + Sex + Age * Lrn, MASS::quine))
  expect_equal(as.list(empty)$tests$type, "II")
  statistics <- tidied(empty, "tests")$statistic
  expect_equal(statistics[c(1:3, 6)], c(3.8285, 14.934, .40438, .57891), tolerance = 1e-4)
  expect_equal(vapply(as.list(empty)$tests$effects, `[[`, 0, "num.df"), c(1, 1, 3, 1, 2))
})

test_that("a target of events is read in each of its forms", {
  events <- c(1, 4, 9, 13, 18, 20)
  data <- data.frame(events, trials = 20, other = 20 - events, size = 20 + 1:6, dose = 0:5)
  data$share <- data$events / data$size
  target <- function(formula, ...) as.list(hierfit(glm(formula, binomial, data, ...)))$target
  expect_equal(target(cbind(events, 20 - events) ~ dose), list(variable = "events", trials.constant = 20))
  expect_equal(target(cbind(events, size - events) ~ dose), list(variable = "events", trials = "size"))
  expect_equal(target(cbind(events, other) ~ dose), list(variable = "events", trials.constant = 20))
  shares <- hierfit(glm(events / size ~ dose, binomial, data, weights = size))
  expect_equal(as.list(shares)$target, list(variable = "events", trials = "size"))
  expect_equal(as.vector(as.list(shares)$data$columns$events), events)
  named <- hierfit(glm(share ~ dose, binomial, data, weights = size))
  expect_equal(as.list(named)$target, list(variable = "share", trials = "trials of share"))
  cars <- glm(am ~ mpg, binomial, mtcars)
  single <- hierfit(cars)
  expect_equal(as.list(single)$target, list(variable = "am", reference = "0"))
  expect_equal(as.vector(as.list(single)$data$predicted), ifelse(unname(fitted(cars)) > .5, "1", "0"))
  expect_error(hierfit(glm(Species ~ Sepal.Width, binomial, iris)), "3 levels")
})

test_that("fits of classes that only inherit are refused", {
  needs("MASS")
  expect_error(hierfit(MASS::rlm(stack.loss ~ ., stackloss)), "class rlm")
  expect_error(hierfit(lm(cbind(mpg, hp) ~ wt, mtcars)), "several targets")
  expect_error(hierfit(loess(mpg ~ wt, mtcars)), "no fit_parts\\(\\) method")
  expect_error(hierfit(lm(mpg ~ wt, mtcars), df = "satterthwaite"), "it has \"residual\", \"asymptotic\"")
  expect_error(hierfit(lm(mpg ~ wt, mtcars), scale = "log"), "scale is one of")
})
