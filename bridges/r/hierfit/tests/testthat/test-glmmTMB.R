test_that("a count model has the numbers of glmmTMB and of emmeans", {
  needs("glmmTMB", "emmeans")
  fit <- glmmTMB::glmmTMB(count ~ spp * mined + (1 | site), glmmTMB::Salamanders,
                          family = glmmTMB::nbinom2)
  x <- hierfit(fit, means = list(~ spp | mined, ~ mined), df = "residual")
  expect_coefficients(x, coef(summary(fit))$cond)
  expect_same(as.list(x)$random[[1]]$covariances[[1]]$matrix[[1]], glmmTMB::VarCorr(fit)$cond$site)
  expect_same(as.list(x)$residual$parameters[[2]]$estimate, 1 / sigma(fit))
  means <- as.data.frame(summary(emmeans::emmeans(fit, c("spp", "mined"), df = 628), type = "response"))
  means <- means[order(means$spp, means$mined), ]
  ours <- tidied(x, "means")
  ours <- ours[ours$block == 1, ]
  expect_equal(ours$spp, as.character(means$spp))
  expect_same(ours$estimate, means$response)
  expect_same(ours$std.error, means$SE)
  expect_same(ours$conf.low, means[[grep("LCL|lower", names(means))]])
  regridded <- emmeans::regrid(emmeans::emmeans(fit, c("spp", "mined"), df = 628))
  contrasts <- as.data.frame(emmeans::contrast(regridded, "pairwise", by = "mined", adjust = "none"))
  ours <- tidied(x, "contrasts")
  expect_same(ours$estimate[ours$block == 1], contrasts$estimate)
  expect_same(ours$std.error[ours$block == 1], contrasts$SE)
  expect_same(ours$p.value[ours$block == 1], contrasts$p.value, 1e-7)
  expect_equal(paste(ours$level, ours$against, sep = " - ")[ours$block == 1],
               gsub("[()]", "", as.character(contrasts$contrast)))
})

test_that("other parts of a model are noted, and no code is guessed", {
  needs("glmmTMB")
  inflated <- glmmTMB::glmmTMB(count ~ mined + (1 | site), glmmTMB::Salamanders, ziformula = ~ mined,
                               family = poisson)
  expect_match(as.character(as.list(hierfit(inflated))$engine$notes), "zero inflation", all = FALSE)
  dispersed <- glmmTMB::glmmTMB(Reaction ~ Days + (1 | Subject), lme4::sleepstudy,
                                dispformula = ~ Days)
  expect_match(as.character(as.list(hierfit(dispersed))$engine$notes), "dispersion", all = FALSE)
  data <- transform(glmmTMB::Salamanders, share = (count + 1) / (max(count) + 2))
  beta <- as.list(hierfit(glmmTMB::glmmTMB(share ~ mined, data, family = glmmTMB::beta_family())))
  expect_equal(beta$distribution, "other")
  expect_match(as.character(beta$engine$notes), "beta", all = FALSE)
})

test_that("the correlation of a series is a parameter of its own", {
  needs("glmmTMB")
  set.seed(1)
  data <- expand.grid(time = factor(1:6), group = factor(1:30))
  data$y <- rnorm(180, sd = .5) + unlist(lapply(1:30, function(group) arima.sim(list(ar = .7), 6)))
  fit <- glmmTMB::glmmTMB(y ~ 1 + ar1(0 + time | group), data)
  block <- as.list(hierfit(fit))$random[[1]]
  expect_equal(block$structure, "ar1")
  expected <- glmmTMB::VarCorr(fit)$cond$group
  expect_same(block$parameters[[1]]$estimate, expected[1, 1])
  expect_same(block$parameters[[2]]$estimate, attr(expected, "correlation")[1, 2])
  # theta is the log standard deviation: its standard error carries over.
  se <- sqrt(diag(vcov(fit, full = TRUE)))
  expect_equal(block$parameters[[1]]$std.error, 2 * expected[1, 1] * se[[length(se) - 1]],
               tolerance = 1e-6)
})
