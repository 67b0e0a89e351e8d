# Hypotheses about the fixed part, in the coefficients of the fit.

# Type III: the hypotheses of a design whose factors are coded by sums, so that an effect is told at
# the mean of all others. Both designs have the same columns, so the map between them is exact.
type_three <- function(design) {
  sums <- lapply(design$contrasts, function(contrast) "contr.sum")
  matrix <- stats::model.matrix(stats::delete.response(design$terms), design$frame,
                                contrasts.arg = if (length(sums)) sums)
  map <- qr.coef(qr(matrix), design$matrix)
  map[abs(map) < 1e-10] <- 0
  lapply(seq_along(design$effects), function(effect) {
    map[attr(matrix, "assign") == effect, , drop = FALSE]
  })
}

# Type II, for designs with empty cells, where type III has no answer: an effect after all others
# but those that contain it, by what their covariance leaves of it.
type_two <- function(design, vcov) {
  factors <- attr(design$terms, "factors") > 0
  lapply(seq_along(design$effects), function(effect) {
    holds <- apply(factors, 2, function(other) all(other[factors[, effect]]))
    holds[effect] <- FALSE
    own <- which(design$assign == effect)
    above <- which(design$assign %in% which(holds))
    hypotheses <- diag(ncol(design$matrix))[own, , drop = FALSE]
    if (length(above)) {
      hypotheses[, above] <- -vcov[own, above] %*% MASS::ginv(vcov[above, above, drop = FALSE])
    }
    hypotheses
  })
}

type_two_note <- paste("Tests of effects are of type II: combinations of levels have no records,",
                       "or columns of the design hang on others.")

# A Wald test with given denominator degrees of freedom; as many of the numerator as hypotheses that
# are free of each other.
wald <- function(coef, vcov, df) {
  function(hypotheses) {
    middle <- hypotheses %*% vcov %*% t(hypotheses)
    scale <- 1 / sqrt(pmax(diag(middle), .Machine$double.xmin))
    scaled <- middle * outer(scale, scale)
    rank <- qr(scaled, tol = 1e-9)$rank
    values <- (hypotheses %*% coef) * scale
    statistic <- if (rank == nrow(scaled)) sum(values * solve(scaled, values))
                 else sum(values * (MASS::ginv(scaled, 1e-9) %*% values))
    list(statistic = statistic / rank, num.df = rank,
         den.df = if (is.function(df)) df(hypotheses) else df)
  }
}

# Hypotheses about design columns as hypotheses about all coefficients: thresholds come ahead of them,
# and a nominal target has a set of them for each category but the reference.
spread <- function(hypotheses, parts) {
  if (length(parts$thresholds)) cbind(matrix(0, nrow(hypotheses), length(parts$thresholds)), hypotheses)
  else diag(sets_of(parts)) %x% hypotheses
}

sets_of <- function(parts) if (is.matrix(parts$coef)) nrow(parts$coef) else 1L

# The tests of the document: of all effects together, and of each. `kept` are the design columns that
# have a coefficient.
tests_of <- function(parts, design, kept) {
  if (!length(design$effects)) return(NULL)
  is_full <- all(kept[design$assign > 0])
  hypotheses <- if (is_full) type_three(design) else {
    vcov <- matrix(0, length(kept), length(kept))
    own <- length(parts$thresholds) + seq_len(sum(kept))
    vcov[kept, kept] <- parts$vcov[own, own]
    type_two(design, vcov)
  }
  contest <- function(hypotheses) {
    hypotheses <- hypotheses[, kept, drop = FALSE]
    hypotheses <- hypotheses[rowSums(abs(hypotheses)) > 0, , drop = FALSE]
    if (!nrow(hypotheses)) return(list(num.df = 0))
    compact(lapply(parts$contest(spread(hypotheses, parts)), finite))
  }
  all <- diag(length(kept))[design$assign > 0 | !design$intercept, , drop = FALSE]
  list(type = if (is_full) "III" else "II", model = contest(all),
       effects = lapply(seq_along(hypotheses), function(effect) {
         c(list(effect = effect - 1L), contest(hypotheses[[effect]]))
       }))
}
