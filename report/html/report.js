// Adds to a page that reads without it: a switch for the theme, and a tab stop only where a table
// scrolls.
"use strict";
(() => {
  const root = document.documentElement;
  const themes = ["auto", "light", "dark"];
  const button = document.getElementById("theme");
  const show = (theme) => {
    root.dataset.theme = theme;
    button.textContent = button.dataset[theme];
  };
  // A page from a file may have no storage.
  const stored = (write) => {
    try {
      if (write) localStorage.setItem("hierfit-theme", write);
      return localStorage.getItem("hierfit-theme");
    } catch {
      return write;
    }
  };
  const first = stored() || root.dataset.theme;
  show(themes.includes(first) ? first : "auto");
  button.hidden = false;
  button.addEventListener("click", () => {
    const next = themes[(themes.indexOf(root.dataset.theme) + 1) % themes.length];
    show(next);
    stored(next);
  });

  const seen = new ResizeObserver((entries) => {
    for (const { target } of entries) {
      target.tabIndex = target.scrollWidth > target.clientWidth + 1 ? 0 : -1;
    }
  });
  for (const region of document.querySelectorAll(".scroll")) seen.observe(region);
})();
