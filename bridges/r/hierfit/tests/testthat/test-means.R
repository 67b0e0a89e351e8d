fit <- lm(breaks ~ wool * tension, warpbreaks)

test_that("contrasts have the order and the numbers of emmeans", {
  needs("emmeans")
  grid <- emmeans::emmeans(fit, c("tension", "wool"))
  kinds <- list(pairwise = list("pairwise"), deviation = list("eff"),
                simple = list("trt.vs.ctrl", ref = 2))
  for (kind in names(kinds)) {
    expected <- as.data.frame(do.call(emmeans::contrast, c(list(grid), kinds[[kind]],
                                                           by = "wool", adjust = "none")))
    x <- hierfit(fit, means = ~ tension | wool, contrasts = kind, reference = list(tension = "M"))
    ours <- tidied(x, "contrasts")
    expect_same(ours$estimate, expected$estimate)
    expect_same(ours$std.error, expected$SE)
    expect_equal(ours$wool, as.character(expected$wool))
    if (kind != "deviation") expect_equal(paste(ours$level, ours$against, sep = " - "),
                                          as.character(expected$contrast))
  }
})

test_that("adjusted p, bounds and overall tests are those of emmeans", {
  needs("emmeans")
  needs_program()
  contrasts <- emmeans::contrast(emmeans::emmeans(fit, c("tension", "wool")), "pairwise", by = "wool")
  shown <- function(adjust) {
    cells <- as.data.frame(hierfit(fit, means = ~ tension | wool, adjust = adjust))
    lapply(stats::setNames(nm = c("Adj. sig.", "95% confidence interval / Lower")), function(name) {
      cells$value[cells$subtype == "Contrasts" & cells$column == name]
    })
  }
  holm <- shown("holm")
  expect_same(holm[[1]], summary(contrasts, adjust = "holm")$p.value)
  expect_same(holm[[2]], confint(contrasts, adjust = "bonferroni")$lower.CL)
  tukey <- shown("tukey")
  expect_same(tukey[[1]], summary(contrasts, adjust = "tukey")$p.value)
  expect_same(tukey[[2]], confint(contrasts, adjust = "tukey")$lower.CL)
  cells <- as.data.frame(hierfit(fit, means = ~ tension | wool))
  overall <- emmeans::test(contrasts, joint = TRUE, by = "wool")
  expect_equal(cells$value[cells$subtype == "OverallTestResults" & cells$column == "F"],
               overall$F.ratio, tolerance = 1e-3)  # emmeans rounds it
})

test_that("scales, covariates and empty cells", {
  needs("emmeans", "MASS")
  counts <- glm(count ~ spray, poisson, InsectSprays)
  response <- tidied(hierfit(counts, means = ~ spray), "contrasts")
  means <- tapply(InsectSprays$count, InsectSprays$spray, mean)
  expect_same(response$estimate[1], means[["A"]] - means[["B"]], 1e-7)
  link <- tidied(hierfit(counts, means = ~ spray, scale = "link"), "contrasts")
  expect_same(link$estimate[1], log(means[["A"]] / means[["B"]]), 1e-7)
  logged <- lm(log(breaks) ~ tension, warpbreaks)
  expect_same(tidied(hierfit(logged, means = ~ tension), "means")$estimate,
              tapply(log(warpbreaks$breaks), warpbreaks$tension, mean))
  at <- tidied(hierfit(lm(mpg ~ wt, mtcars), means = ~ wt, at = list(wt = c(2, 4))), "means")
  expect_same(at$estimate, predict(lm(mpg ~ wt, mtcars), data.frame(wt = c(2, 4))))
  factored <- hierfit(lm(mpg ~ factor(cyl) + wt, mtcars), means = ~ cyl)
  expect_equal(as.vector(as.list(factored)$means[[1]]$fields), "factor(cyl)")
  expect_equal(tidied(factored, "contrasts")$level, c("4", "4", "6"))
  empty <- hierfit(MASS::glm.nb(Days ~ Eth + Sex + Age * Lrn, MASS::quine), means = ~ Lrn | Age)
  expect_equal(sum(is.na(tidied(empty, "means")$estimate)), 1)
  expect_null(as.list(empty)$grand.mean)
  cells <- as.list(hierfit(fit, means = ~ wool * tension))$means[[1]]
  expect_equal(length(cells$rows), 6)
  expect_null(cells$contrasts)
  nested <- data.frame(y = sqrt(1:24), school = gl(3, 8), class = gl(6, 4))
  nested <- hierfit(lm(y ~ school / class, nested), means = ~ class | school)
  expect_equal(as.character(as.list(nested)$means[[1]]$conditions), "contrasts not computed")
  expect_error(hierfit(fit, means = ~ shape), "shape is no variable")
  expect_error(hierfit(fit, means = ~ wool, contrasts = "simple", reference = list(wool = "C")),
               "C is no level of wool")
})
