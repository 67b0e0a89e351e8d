# The variables of a fit: what they are called, which values they have, and their records.

# The variable that a factor() of it is made of.
bare_name <- function(name) sub("^(as[.])?(factor|ordered)\\((.*)\\)$", "\\3", name)

# Collects variables as the parts of a document name them.
#
# `frame` is the model frame; `data` the data frame of the call, if it can be found, which has labels
# that a model frame has lost; `labels` those of the caller, by name.
variable_list <- function(frame, data, labels) {
  list_of <- list()
  source_of <- function(name) {
    for (place in list(data[[name]], data[[bare_name(name)]], frame[[name]]))
      if (!is.null(attr(place, "label")) || !is.null(attr(place, "labels"))) return(place)
    NULL
  }
  add <- function(name, column = frame[[name]], ...) {
    if (!is.null(list_of[[name]])) return(invisible(name))
    source <- source_of(name)
    is_factor <- !is.null(column) && kind_of(column) == "factor"
    label <- if (name %in% names(labels)) labels[[name]] else attr(source, "label")
    list_of[[name]] <<- utils::modifyList(compact(list(
      name = name, label = if (length(label)) as.character(label)[1],
      level = if (is.ordered(column)) "ordinal" else if (is_factor) "nominal" else "scale",
      values = if (is_factor) I(levels_of(column)),
      labels = if (is_factor) value_labels(source, levels_of(column)))), list(...))
    invisible(name)
  }
  list(add = add, all = function() unname(list_of))
}

# Value labels as haven keeps them: values by their labels.
value_labels <- function(column, levels) {
  labels <- attr(column, "labels")
  if (is.null(labels) || is.null(names(labels))) return(NULL)
  by_value <- stats::setNames(as.list(names(labels)), as.character(labels))
  by_value <- by_value[names(by_value) %in% levels]
  if (length(by_value)) by_value
}

# The data frame of the call, if it is still there; only for labels.
data_of <- function(fit, formula) {
  call <- tryCatch(stats::getCall(fit), error = function(e) NULL)
  tryCatch(as.list(as.data.frame(eval(call$data, environment(formula)))), error = function(e) NULL)
}

# Who counts: records that a factor cannot hold as numbers become texts.
record_values <- function(column) {
  if (kind_of(column) == "factor") as.character(column) else as.numeric(column)
}

# The target: its variable, its trials, its records, and how predictions compare with them. The forms
# are those of the binomial family in `glm`, and a response of any other kind as it is.
target_of <- function(parts, variables) {
  frame <- parts$frame
  response <- stats::model.response(frame)
  expression <- attr(parts$terms, "variables")[[2]]
  name <- without_quotes(deparse1(expression))
  weights <- as.vector(stats::model.weights(frame))
  predicted <- parts$predicted
  if (is.null(weights)) weights <- rep(1, nrow(frame))
  if (parts$distribution != "binomial") {
    return(plain_target(name, response, predicted, parts, variables))
  }
  if (is.matrix(response)) {
    return(counted_target(expression, response[, 1], rowSums(response), predicted, variables))
  }
  if (kind_of(response) == "factor" || (all(response %in% 0:1) && all(weights == 1))) {
    levels <- levels_of(response)
    if (length(levels) > 2) {
      stop_for("the target ", name, " has ", length(levels), " levels with a binomial distribution; ",
               "make it one level against the others ahead of the fit")
    }
    variables$add(name, factor(response, unique(levels)), level = "nominal")
    return(list(target = list(variable = name, reference = levels[1]),
                columns = stats::setNames(list(as.character(response)), name),
                predicted = levels[1 + (predicted > .5)]))
  }
  counted_target(expression, round(response * weights, 6), weights, predicted, variables)
}

plain_target <- function(name, response, predicted, parts, variables) {
  if (is.matrix(response) && ncol(response) > 1) {
    stop_for("the target ", name, " is a matrix, which has a place with a binomial distribution only")
  }
  is_factor <- kind_of(response) == "factor"
  variables$add(name, response)
  list(target = compact(list(variable = name,
                             reference = if (parts$distribution == "nominal") levels_of(response)[1])),
       columns = stats::setNames(list(record_values(if (is_factor) response else as.vector(response))),
                                 name),
       predicted = predicted)
}

# Events of trials: cbind(events, trials - events), cbind(events, others), events / trials.
counted_target <- function(expression, events, trials, predicted, variables) {
  first <- if (is.call(expression) && length(expression) == 3) expression[[2]] else expression
  second <- if (is.call(expression) && length(expression) == 3) expression[[3]]
  is_pair <- is.call(expression) && identical(expression[[1]], quote(cbind))
  is_rest <- is_pair && is.call(second) && identical(second[[1]], quote(`-`)) &&
    length(second) == 3 && identical(second[[3]], first)
  name <- without_quotes(deparse1(first))
  trials_name <- if (is_rest) deparse1(second[[2]]) else if (is.null(second)) paste("trials of", name)
                 else if (is_pair) paste(name, "+", deparse1(second)) else deparse1(second)
  trials_name <- without_quotes(trials_name)
  trials <- as.vector(trials)
  is_constant <- length(unique(trials)) == 1 && trials[1] == round(trials[1])
  variables$add(name, events, level = "scale", type = "integer")
  if (!is_constant) variables$add(trials_name, trials, level = "scale", type = "integer")
  list(target = compact(list(variable = name, trials = if (!is_constant) trials_name,
                             trials.constant = if (is_constant) trials[[1]])),
       columns = c(stats::setNames(list(as.vector(events)), name),
                   if (!is_constant) stats::setNames(list(as.vector(trials)), trials_name)),
       predicted = predicted * trials)
}
