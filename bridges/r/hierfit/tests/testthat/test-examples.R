# The shipped examples, where they are at hand: their documents hold the numbers of the same fits.
# Iterative fits differ by what their optimisers leave.
example_document <- function(name) {
  folder <- Sys.getenv("HIERFIT_EXAMPLES")
  skip_if_not(nzchar(folder), "HIERFIT_EXAMPLES names no folder of examples")
  jsonlite::read_json(file.path(folder, name, "fit.json"))
}

numbers <- function(rows, ...) {
  lapply(stats::setNames(nm = c(...)), function(member) {
    unlist(lapply(rows, function(row) if (is.null(row[[member]])) NA else row[[member]]))
  })
}

# Rows by their levels, whatever the order of the fields.
in_order <- function(rows) {
  rows[order(vapply(rows, function(row) {
    paste(unlist(row$levels[order(names(row$levels))]), collapse = "/")
  }, ""))]
}

expect_document <- function(x, shipped, tolerance) {
  ours <- as.list(x)
  like <- function(one, other, ...) {
    expect_equal(numbers(one, ...), numbers(other, ...), tolerance = tolerance)
  }
  expect_equal(ours[c("distribution", "link", "df.method")], shipped[c("distribution", "link", "df.method")])
  like(ours$coefficients, shipped$coefficients, "estimate", "std.error")
  like(list(ours$tests$model), list(shipped$tests$model), "statistic", "num.df", "den.df")
  like(ours$tests$effects, shipped$tests$effects, "statistic", "num.df", "den.df")
  like(list(ours$statistics), list(shipped$statistics), "AICc", "BIC", "logLik")
  like(list(ours$grand.mean), list(shipped$grand.mean), "estimate", "std.error", "conf.low")
  like(ours$random[[1]]$parameters, shipped$random[[1]]$parameters, "estimate", "conf.low", "conf.high")
  expect_equal(as.character(ours$residual$subjects), unlist(shipped$residual$subjects))
  for (at in seq_along(shipped$means)) {
    like(in_order(ours$means[[at]]$rows), in_order(shipped$means[[at]]$rows),
         "estimate", "std.error", "conf.low", "conf.high")
    like(ours$means[[at]]$contrasts$rows, shipped$means[[at]]$contrasts$rows, "estimate", "std.error", "df")
  }
  effects <- function(document) lapply(document$effect.means, function(means) unlist(means$fields))
  expect_setequal(effects(ours), effects(shipped))
  for (means in shipped$effect.means) {
    own <- Filter(function(own) setequal(own$fields, unlist(means$fields)), ours$effect.means)[[1]]
    like(own$rows, means$rows, "estimate", "std.error")
  }
}

test_that("sleepstudy", {
  needs("lmerTest", "emmeans")
  shipped <- example_document("sleepstudy")
  fit <- lmerTest::lmer(Reaction ~ Days + (Days | Subject), lme4::sleepstudy)
  expect_document(hierfit(fit, intervals = "profile"), shipped, 1e-9)
  # A plain fit is converted once, and gives the same.
  plain <- lme4::lmer(Reaction ~ Days + (Days | Subject), lme4::sleepstudy)
  expect_document(hierfit(plain, intervals = "profile"), shipped, 1e-7)
})

test_that("cbpp", {
  needs("lme4", "emmeans")
  shipped <- example_document("cbpp")
  fit <- lme4::glmer(cbind(incidence, size - incidence) ~ period + (1 | herd), lme4::cbpp, binomial)
  x <- hierfit(fit, means = ~ period, contrasts = "simple", df = "residual", intervals = "profile",
               repeated = "period")
  expect_document(x, shipped, 1e-9)
})

test_that("salamanders", {
  needs("glmmTMB", "emmeans")
  shipped <- example_document("salamanders")
  fit <- glmmTMB::glmmTMB(count ~ spp * mined + (1 | site), glmmTMB::Salamanders,
                          family = glmmTMB::nbinom2)
  x <- hierfit(fit, means = list(~ spp | mined, ~ mined | spp, ~ mined), df = "residual",
               repeated = c("sample", "spp"))
  # The intervals of the shipped document are those that are worked out from the standard errors.
  shipped$random[[1]]$parameters[[1]][c("conf.low", "conf.high")] <- NULL
  expect_document(x, shipped, 1e-9)
  expect_equal(numbers(as.list(x)$residual$parameters, "estimate", "std.error"),
               numbers(shipped$residual$parameters, "estimate", "std.error"), tolerance = 1e-9)
  expect_equal(tidied(x, "random")$std.error[1], shipped$random[[1]]$parameters[[1]]$std.error,
               tolerance = 1e-9)
})
