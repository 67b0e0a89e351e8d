rows_of <- function(x) as.list(x)$coefficients
effects_of <- function(x) lapply(as.list(x)$fixed$effects, function(effect) as.vector(effect$fields))

test_that("functions of covariates are variables of that name, powers are powers", {
  x <- hierfit(lm(mpg ~ log(hp) + wt + I(wt^2) + wt:qsec, mtcars))
  expect_equal(effects_of(x), list("log(hp)", "wt", "wt", c("wt", "qsec")))
  expect_equal(as.vector(as.list(x)$fixed$effects[[3]]$powers), 2)
  names <- vapply(as.list(x)$variables, `[[`, "", "name")
  expect_setequal(names, c("mpg", "log(hp)", "wt", "qsec"))
})

test_that("names that a formula quotes are those of the data", {
  data <- data.frame(`a b` = warpbreaks$tension, `y z` = warpbreaks$breaks, check.names = FALSE)
  x <- hierfit(lm(`y z` ~ `a b`, data))
  expect_equal(as.list(x)$target$variable, "y z")
  expect_equal(rows_of(x)[[2]]$levels, list(`a b` = "M"))
  # emmeans has no grid for such a formula; the rest of the report stands.
  apart <- hierfit(lm(warpbreaks$breaks ~ warpbreaks$tension))
  expect_length(rows_of(apart), 3)
})

test_that("columns of a matrix are rows as fitted, with one test", {
  fit <- lm(mpg ~ poly(hp, 2) + splines::ns(wt, 3), mtcars)
  x <- hierfit(fit)
  expect_equal(vapply(rows_of(x), `[[`, "", "term")[-1], names(coef(fit))[-1])
  expected <- drop1(fit, test = "F")
  expect_same(tidied(x, "tests")$statistic[-1], expected$`F value`[-1])
  expect_equal(tidied(x, "tests")$num.df, c(5, 2, 3))
  expect_error(hierfit(lm(breaks ~ poly(as.numeric(tension), 2) + wool, warpbreaks,
                          contrasts = list(wool = "contr.sum")), coefficients = "levels"), "as fitted")
})

test_that("codings of factors are not taken for levels", {
  data <- transform(warpbreaks, tension = factor(tension, ordered = TRUE))
  ordered <- rows_of(hierfit(lm(breaks ~ tension, data)))
  expect_equal(vapply(ordered, `[[`, "", "term"), c("Intercept", "tension.L", "tension.Q"))
  expect_null(ordered[[2]]$levels)
  sums <- rows_of(hierfit(lm(breaks ~ wool, warpbreaks, contrasts = list(wool = "contr.sum"))))
  expect_null(sums[[2]]$levels)
  last <- rows_of(hierfit(lm(breaks ~ tension, warpbreaks, contrasts = list(tension = "contr.SAS"))))
  expect_equal(vapply(last[-1], function(row) row$levels$tension, ""), c("L", "M"))
  logical <- rows_of(hierfit(lm(mpg ~ vs == 1, transform(mtcars))))
  expect_equal(logical[[2]]$levels, list(`vs == 1` = "TRUE"))
  none <- hierfit(lm(breaks ~ 0 + tension, warpbreaks))
  expect_equal(vapply(rows_of(none), function(row) row$levels$tension, ""), c("L", "M", "H"))
  expect_false(as.list(none)$fixed$intercept)
})

test_that("type III tests are the same under each coding", {
  formula <- breaks ~ wool * tension
  codings <- c("contr.treatment", "contr.sum", "contr.helmert", "contr.poly")
  tests <- lapply(codings, function(coding) {
    tidied(hierfit(lm(formula, warpbreaks, contrasts = list(wool = coding, tension = coding))), "tests")
  })
  for (test in tests) expect_same(test$statistic, tests[[1]]$statistic)
})

test_that("level rows of coded factors are those of a fit that has levels", {
  needs_program()
  data <- transform(warpbreaks, tension = factor(tension, ordered = TRUE))
  coded <- lm(breaks ~ wool * tension, data, contrasts = list(wool = "contr.sum"))
  cells <- as.data.frame(hierfit(coded, coefficients = "levels"))
  plain <- lm(breaks ~ wool * tension, data,
              contrasts = list(wool = "contr.SAS", tension = "contr.SAS"))
  table <- coef(summary(plain))
  column <- function(name) subset(cells, subtype == "FixedCoefficients" & column == name)
  estimates <- column("Coefficient")
  is_redundant <- estimates$notes != ""
  expect_same(estimates$value[!is_redundant], table[, 1])
  expect_same(stats::na.omit(column("Std. error")$value), table[, 2])
})

test_that("labels come from the data, from haven and from the caller", {
  data <- warpbreaks
  attr(data$breaks, "label") <- "Breaks of the warp"
  variables <- as.list(hierfit(lm(breaks ~ wool + tension, data), labels = c(tension = "Pull")))$variables
  expect_equal(lapply(variables, `[[`, "label"), list("Breaks of the warp", NULL, "Pull"))
  data$code <- structure(rep(1:2, 27), labels = c(Angora = 1, Merino = 2), label = "Kind of wool")
  factored <- as.list(hierfit(lm(breaks ~ factor(code), data)))$variables[[2]]
  expect_equal(factored$labels, list("1" = "Angora", "2" = "Merino"))
  expect_equal(factored$label, "Kind of wool")
})
