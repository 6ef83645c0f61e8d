// Pieces of pages: elements, tables, and forms that are made of what the API says about its fields.
"use strict";

function make(kind, properties = {}, ...content) {
  const one = Object.assign(document.createElement(kind), properties);
  one.append(...content);
  return one;
}

const button = (label, onclick, className = "quiet") => make("button", {type: "button", onclick, className}, label);
const tableRow = (...cells) => make("tr", {}, ...cells.map(cell => cell instanceof Element && /^T[HD]$/.test(cell.tagName) ? cell : make("td", {}, cell)));
const heading = text => make("th", {scope: "row"}, text);

// An address with a button that copies it.
function addressCells(address) {
  const link = make("a", {href: address}, address);
  const copy = button("Copy", () => act(() => navigator.clipboard.writeText(address), "Copied."));
  return [make("code", {}, link), copy];
}

let fieldCount = 0;

// The input for a field, with the kind and the limits that its element in the document names.
function inputFor(root, field) {
  const source = find(root, field.path);
  const type = source ? source.getAttribute("type") : "string";
  const value = source ? source.textContent.trim() : "";
  const words = field.words || enumeration(root, type);
  if (words) {
    const choices = words.map(word => [].concat(word)).map(([word, label]) => make("option", {value: word}, label ?? word));
    const select = make("select", {}, ...choices);
    select.value = value;
    return select;
  }
  if (type === "boolean") {
    return make("input", {type: "checkbox", checked: value === "true"});
  }
  if (/int/.test(type || "")) {
    const limits = ["min", "max"].filter(name => source.hasAttribute(name));
    const input = make("input", {type: limits.length === 2 && field.slider !== false ? "range" : "number", required: true});
    limits.forEach(name => input.setAttribute(name, source.getAttribute(name)));
    input.value = value;
    return input;
  }
  const input = make("input", {type: field.password ? "password" : "text", value});
  const longest = source && source.getAttribute("maxLen");
  if (longest) {
    input.maxLength = Number(longest);
  }
  return input;
}

function enumeration(root, type) {
  const entry = type && find(root, "types/" + type);
  return entry ? [...entry.children].filter(child => child.localName === "enum").map(child => child.textContent) : null;
}

const valueOf = input => input.type === "checkbox" ? String(input.checked) : input.value;

// A field's label and input; a slider shows its number.
function labelled(label, input) {
  input.id = "field" + ++fieldCount;
  const name = make("label", {htmlFor: input.id}, label);
  if (input.type === "range") {
    const number = make("output", {htmlFor: input.id}, input.value);
    input.addEventListener("input", () => number.textContent = input.value);
    name.append(" ", number);
  }
  return make("div", {}, name, input);
}

// A form over one command that reads and one that writes.
// {form, get, set, fields: [{label, path}], changed}; `set` may be a function that takes the values by path.
function settingsForm(options) {
  const inputs = new Map();
  const save = () => {
    const values = Object.fromEntries([...inputs].map(([path, input]) => [path, valueOf(input)]));
    return typeof options.set === "function" ? options.set(values) : call(options.set, configDocument(nest(values)));
  };
  options.form.onsubmit = event => {
    event.preventDefault();
    act(async () => {
      await save();
      await (options.changed || (() => {}))();
    }, "Saved.");
  };
  return async () => {
    const root = typeof options.get === "function" ? await options.get() : await call(options.get);
    inputs.clear();
    const parts = options.fields.filter(field => field.always || find(root, field.path)).map(field => {
      const input = inputFor(root, field);
      input.dataset.path = field.path;
      inputs.set(field.path, input);
      if (options.live) {
        input.addEventListener("change", () => options.form.requestSubmit());
      }
      return labelled(field.label, input);
    });
    options.form.replaceChildren(...parts, make("button", {type: "submit"}, "Save"));
    return root;
  };
}
