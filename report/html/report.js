// Adds to a page that reads without it: a switch for the theme, tools beneath each table, a filter
// and a mark of the place for the contents, and a tab stop only where a table scrolls.
"use strict";

/** The theme: as the system has it, or as the reader last chose. */
function switchThemes(button) {
  const root = document.documentElement;
  const themes = ["auto", "light", "dark"];
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
}

const escaped = (text) => text.replace(/[&<>"]/g, (character) => `&#${character.charCodeAt(0)};`);

/** What a node says, without what is only spoken: as text, which has no note marks, or as markup. */
function contentOf(node, asMarkup = false) {
  if (node.nodeType === Node.TEXT_NODE) return asMarkup ? escaped(node.data) : node.data;
  if (node.nodeName === "BR") return asMarkup ? "<br>" : " ";
  if (node.matches(asMarkup ? ".v" : ".v, sup")) return "";
  const content = Array.from(node.childNodes, (child) => contentOf(child, asMarkup)).join("");
  const tag = node.nodeName.toLowerCase();
  return asMarkup && /^([bi]|sup)$/.test(tag) ? `<${tag}>${content}</${tag}>` : content;
}

/** How this page writes numbers, with more or fewer decimals than it was made with. */
class Numbers {
  constructor({ mark, minus, less, more, zero }) {
    Object.assign(this, { mark, minus, less, more, zero: zero ?? "" });
  }

  /** The parts of a written number: whole digits with all ahead of them, decimals, and the rest. */
  parts(shown) {
    const tail = shown.search(/E|[^\d]+$/);
    const [whole, decimals = ""] = (tail < 0 ? shown : shown.slice(0, tail)).split(this.mark);
    return { whole, decimals, tail: tail < 0 ? "" : shown.slice(tail) };
  }

  /** What a written number takes ahead of its decimal mark, in digits, and behind, in half digits. */
  widths(shown) {
    const { whole, decimals, tail } = this.parts(shown);
    const rest = tail === "" ? 0 : tail.length === 1 ? 3 : 2 * tail.length + 1;
    return { left: whole.length, right: (decimals === "" ? 0 : 2 * decimals.length + 1) + rest };
  }

  /**
   * `shown` again, with `shift` more decimals of its `value`. A count stays one, and a number that is
   * not 0 keeps the decimals that say so.
   */
  shifted(shown, value, shift, isSignificance) {
    const { decimals, tail } = this.parts(shown);
    if (shift === 0 || (decimals === "" && Number.isInteger(value))) return shown;
    let count = Math.max(0, decimals.length + shift);
    if (isSignificance && value >= 0 && value <= 1) return this.significance(value, Math.max(1, count));
    const sign = value < 0 ? this.minus : "";
    const size = Math.abs(value);
    const scientific = tail.startsWith("E");
    while (!scientific && count < decimals.length && size > 0 && Number(size.toFixed(count)) === 0) ++count;
    const [digits, exponent] = (scientific ? size.toExponential(count) : size.toFixed(count)).split("e");
    const rest = scientific ? "E" + exponent.replace("+", "").replace("-", this.minus) : tail;
    return sign + digits.replace(".", this.mark) + rest;
  }

  significance(value, count) {
    const least = 10 ** -count;
    const [ahead, bound] =
      value < least ? [this.less, least] : this.more && value > 1 - least ? [this.more, 1 - least] : ["", value];
    return ahead + bound.toFixed(count).replace(/^0(?=\.)/, this.zero).replace(".", this.mark);
  }
}

/** One table of the page: several elements when it is long or is there again for paper. */
class Table {
  constructor(elements, numbers, tools) {
    this.elements = elements;
    this.onScreen = elements.filter((table) => !table.closest(".parts"));
    this.numbers = numbers;
    this.status = tools.querySelector("[role=status]");
    this.shift = 0;
    this.given = new Map(); // by cell: what it showed, and its classes
    const actions = {
      text: () => this.copy({ "text/plain": this.asText() }),
      table: () => this.copy({ "text/html": this.asMarkup(), "text/plain": this.asText() }),
      fewer: () => this.setShift(this.shift - 1),
      more: () => this.setShift(this.shift + 1),
      given: () => this.setShift(0),
    };
    tools.addEventListener("click", ({ target }) => actions[target.closest("button")?.dataset.do]?.());
    if (!this.hasDecimals()) for (const tool of tools.querySelectorAll(".d")) tool.remove();
  }

  hasDecimals() {
    return this.onScreen.some((table) => {
      const cells = Array.from(table.querySelectorAll("td[data-value]"));
      return cells.some((cell) => cell.textContent.includes(this.numbers.mark));
    });
  }

  // Decimals.

  setShift(shift) {
    this.shift = Math.max(-9, Math.min(shift, 14));
    for (const table of this.elements) this.rewrite(table);
    const sign = this.shift < 0 ? this.numbers.minus : "+";
    this.status.textContent = this.shift === 0 ? "" : sign + Math.abs(this.shift);
  }

  rewrite(table) {
    const widths = []; // by column: the most digits ahead of the decimal mark, and half digits behind
    const written = [];
    for (const row of table.querySelectorAll("tbody tr")) {
      let column = 0;
      for (const cell of row.querySelectorAll("td")) {
        if (cell.dataset.value !== undefined) {
          const shown = this.shownIn(cell);
          const parts = this.numbers.widths(shown);
          const most = (widths[column] ??= { left: 0, right: 0 });
          most.left = Math.max(most.left, parts.left);
          most.right = Math.max(most.right, parts.right);
          written.push({ cell, shown, parts, most });
        }
        column += cell.colSpan;
      }
    }
    for (const { cell, shown, parts, most } of written) {
      this.write(cell, shown);
      this.pad(cell, most.left - parts.left, most.right - parts.right);
    }
  }

  shownIn(cell) {
    if (!this.given.has(cell)) this.given.set(cell, { shown: contentOf(cell), classes: cell.className });
    const isSignificance = cell.classList.contains("p");
    return this.numbers.shifted(this.given.get(cell).shown, Number(cell.dataset.value), this.shift, isSignificance);
  }

  write(cell, shown) {
    const [digits, exponent] = shown.split("E");
    const marks = cell.querySelectorAll("sup");
    cell.replaceChildren(digits);
    if (exponent) {
      const power = cell.appendChild(document.createElement("span"));
      power.className = `e${exponent.length + 1}`;
      power.textContent = `E${exponent}`;
    }
    cell.append(...marks);
  }

  pad(cell, left, right) {
    const { classes } = this.given.get(cell);
    if (this.shift === 0 || cell.classList.contains("t")) {
      cell.className = classes;
      return;
    }
    const padding = [left > 0 && `l${Math.min(left, 24)}`, right > 0 && `r${Math.min(right, 48)}`];
    cell.className = [cell.classList.contains("p") && "p", ...padding].filter(Boolean).join(" ");
  }

  // Copies.

  /** Lines of cells divided by tabs, with whole numbers; what a merged cell covers is empty. */
  asText() {
    const lines = [];
    for (const table of this.onScreen) {
      const head = lines.length === 0 && table.tHead ? Array.from(table.tHead.rows) : [];
      const covered = []; // by column: how many more lines a cell reaches down
      for (const row of head.concat(...Array.from(table.tBodies, (body) => Array.from(body.rows)))) {
        const line = [];
        const skip = () => {
          for (; covered[line.length] > 0; line.push("")) --covered[line.length];
        };
        for (const cell of row.cells) {
          skip();
          for (let i = 0; i < cell.colSpan; ++i) {
            covered[line.length] = cell.rowSpan - 1;
            line.push(i === 0 ? this.plain(cell) : "");
          }
        }
        skip();
        lines.push(line.join("\t"));
      }
    }
    return lines.join("\n") + "\n";
  }

  /** A number as spreadsheets of the language read it; a text that none takes for a formula. */
  plain(cell) {
    const comma = this.numbers.mark === ",";
    if (cell.dataset.value) return comma ? cell.dataset.value.replace(".", ",") : cell.dataset.value;
    const text = contentOf(cell).replace(/\s+/g, " ").trim();
    const digits = text.replace(/^\u2212/, "-");
    if (digits !== "" && Number.isFinite(Number(comma ? digits.replace(",", ".") : digits))) return digits;
    return /^[=+\-@]/.test(text) ? `'${text}` : text;
  }

  /** The table for a word processor, which knows no classes: each cell with its own rules. */
  asMarkup() {
    const [first, last] = [this.onScreen[0], this.onScreen.at(-1)];
    const bodies = this.onScreen.flatMap((table) => Array.from(table.tBodies));
    const head = first.tHead ? this.rows(first.tHead, true, "0.75pt") : "";
    const body = bodies.map((part, i) => this.rows(part, !head && i === 0, part === bodies.at(-1) && "1.5pt"));
    const notes = Array.from(last.tFoot?.rows ?? [], (row) => this.paragraph(row.cells[0]));
    return `<meta charset="utf-8">${this.paragraph(first.caption)}<table style="border-collapse:collapse" ` +
      `cellspacing="0"><thead>${head}</thead><tbody>${body.join("")}</tbody></table>${notes.join("")}`;
  }

  paragraph(node) {
    const content = contentOf(node, true).trim();
    return content && `<p style="font:10pt Arial,sans-serif;margin:3pt 0">${content}</p>`;
  }

  /** The rows of a head or a body, with a rule above the first and one below the last. */
  rows(section, above, below) {
    const rows = Array.from(section.rows);
    return rows.map((row, i) => {
      const cells = Array.from(row.cells, (cell) =>
        this.cell(cell, above && i === 0, i + cell.rowSpan === rows.length && below));
      return `<tr>${cells.join("")}</tr>`;
    }).join("");
  }

  cell(cell, above, below) {
    const tag = cell.nodeName.toLowerCase();
    const { textAlign, verticalAlign } = getComputedStyle(cell);
    // Word processors pad the end of a cell, but not all of them centre what is padded.
    const inLine = cell.dataset.value && !cell.classList.contains("t");
    const place = inLine ? "text-align:right" : `text-align:${textAlign}`;
    const steps = (letter) => Number(cell.className.match(`\\b${letter}(\\d+)`)?.[1] ?? 0);
    // A digit of Arial at 10 points is 5.56 points wide.
    const left = 5 + 11 * steps("i");
    const right = 5 + 2.78 * steps("r");
    const rule = below || (cell.classList.contains("g") && "0.5pt");
    const style = `font:10pt Arial,sans-serif;${place};vertical-align:${verticalAlign};border:none;` +
      `${above ? "border-top:1.5pt solid #000;" : ""}${rule ? `border-bottom:${rule} solid #000;` : ""}` +
      `padding:2pt ${right.toFixed(1)}pt 2pt ${left}pt`;
    const span = (name) => (cell[name] > 1 ? ` ${name.toLowerCase()}="${cell[name]}"` : "");
    const number = inLine ? ` nowrap sdval="${cell.dataset.value}"` : "";
    return `<${tag}${span("colSpan")}${span("rowSpan")}${number} style="${style}">${contentOf(cell, true)}</${tag}>`;
  }

  async copy(items) {
    const copied = await putOnClipboard(items);
    this.status.textContent = copied ? this.status.dataset.copied : "";
  }
}

/**
 * Whether it could. The clipboard of a copy event comes first: it is there in a page from a file, and
 * it does not hold the styles of a copy against the policy of this page.
 */
async function putOnClipboard(items) {
  const fill = (event) => {
    for (const [type, text] of Object.entries(items)) event.clipboardData.setData(type, text);
    event.preventDefault();
  };
  document.addEventListener("copy", fill, { once: true });
  const copied = document.execCommand("copy");
  document.removeEventListener("copy", fill);
  if (copied) return true;
  try {
    const blobs = Object.entries(items).map(([type, text]) => [type, new Blob([text], { type })]);
    await navigator.clipboard.write([new ClipboardItem(Object.fromEntries(blobs))]);
    return true;
  } catch {
    return false;
  }
}

/** Beneath each table, and ahead of one that is long, what a reader can do with it. */
function addTools(template) {
  const numbers = new Numbers(template.dataset);
  const tables = [];
  for (const table of document.querySelectorAll(".scroll > table")) {
    const region = table.parentElement;
    const name = region.getAttribute("aria-labelledby");
    const before = tables.at(-1);
    const continues = table.closest(".parts") || (region.matches(".slice") && before?.name === name);
    if (continues) before.elements.push(table);
    else tables.push({ name, elements: [table] });
  }
  for (const { name, elements } of tables) {
    const region = elements[0].parentElement;
    const tools = template.content.firstElementChild.cloneNode(true);
    tools.setAttribute("aria-labelledby", name);
    region[region.matches(".slice") ? "before" : "after"](tools);
    new Table(elements, numbers, tools);
  }
}

/** A filter for long contents. What lies beneath a heading that fits stays. */
function filterContents(nav, field) {
  const links = Array.from(nav.querySelectorAll("li > a"));
  field.hidden = links.length < 20;
  field.addEventListener("input", () => {
    const words = field.value.toLocaleLowerCase().split(/\s+/).filter(Boolean);
    const fits = (link) => words.every((word) => link.textContent.toLocaleLowerCase().includes(word));
    const shown = new Set();
    for (const link of links) {
      const fitting = fits(link) || (words.length > 0 && shown.has(link.closest("ul").closest("li")?.firstElementChild));
      if (fitting) shown.add(link);
    }
    for (const link of links) {
      link.parentElement.hidden = !Array.from(link.parentElement.querySelectorAll("a")).some((inner) => shown.has(inner));
    }
  });
}

/** Marks in the contents the last place that begins in the upper third of the window. */
function markPlace(nav) {
  const links = Array.from(nav.querySelectorAll("li > a"));
  const places = links.map((link) => document.getElementById(link.hash.slice(1)));
  let current = null;
  let waits = false;
  const mark = () => {
    waits = false;
    let [from, to] = [0, places.length];
    while (from < to) {
      const middle = (from + to) >> 1;
      if (places[middle].getBoundingClientRect().top < innerHeight / 3) from = middle + 1;
      else to = middle;
    }
    const link = links[from - 1] ?? null;
    if (link === current) return;
    current?.removeAttribute("aria-current");
    link?.setAttribute("aria-current", "location");
    current = link;
    if (!link) return;
    const [box, inside] = [nav.getBoundingClientRect(), link.getBoundingClientRect()];
    if (inside.top < box.top || inside.bottom > box.bottom) nav.scrollTop += inside.top - box.top - box.height / 3;
  };
  addEventListener("scroll", () => {
    if (!waits) requestAnimationFrame(mark);
    waits = true;
  }, { passive: true });
  mark();
}

switchThemes(document.getElementById("theme"));
const template = document.getElementById("tools");
if (template) addTools(template);
const contents = document.querySelector("nav");
if (contents) {
  filterContents(contents, document.getElementById("filter"));
  markPlace(contents);
}
const sizes = new ResizeObserver((entries) => {
  for (const { target } of entries) {
    target.tabIndex = target.scrollWidth > target.clientWidth + 1 ? 0 : -1;
  }
});
for (const region of document.querySelectorAll(".scroll")) sizes.observe(region);
