// Creates and finds elements.

import { WorkerEnded } from "./protocol";

type Child = Node | string | null | undefined;
type Properties = Record<string, string | number | boolean | ((event: never) => void) | undefined>;

export function element<Name extends keyof HTMLElementTagNameMap>(
  name: Name,
  properties: Properties = {},
  ...children: Child[]
): HTMLElementTagNameMap[Name] {
  return fill(document.createElement(name), properties, children);
}

export function svg<Name extends keyof SVGElementTagNameMap>(
  name: Name,
  properties: Properties = {},
  ...children: Child[]
): SVGElementTagNameMap[Name] {
  return fill(document.createElementNS("http://www.w3.org/2000/svg", name), properties, children);
}

function fill<Made extends Element>(made: Made, properties: Properties, children: Child[]): Made {
  for (const [key, value] of Object.entries(properties)) {
    if (typeof value === "function") {
      made.addEventListener(key, value as EventListener);
    } else if (typeof value === "boolean") {
      made.toggleAttribute(key, value);
    } else if (value !== undefined) {
      made.setAttribute(key, String(value));
    }
  }
  made.append(...children.filter((child): child is Node | string => child != null));
  return made;
}

export function button(label: string, click: () => void, properties: Properties = {}) {
  return element("button", { type: "button", click, ...properties }, label);
}

/** Offers content to the user as a file to save. */
export function download(name: string, content: Blob): void {
  const url = URL.createObjectURL(content);
  const link = element("a", { href: url, download: name });
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(url), 60_000);
}

/** A name without characters that move or hide others. */
export function printable(name: string): string {
  return name.replace(/\p{C}/gu, "\uFFFD");
}

/** The inputs with a new text that no `change` event has reported yet. */
const typed = new WeakSet<EventTarget>();
addEventListener("input", (event) => event.target && typed.add(event.target), true);
addEventListener("change", (event) => event.target && typed.delete(event.target), true);

const labelOf = (control: Element) =>
  control.ariaLabel ?? control.getAttribute("name") ?? control.textContent;

/**
 * Changes the content of an element. If that takes the focus away, it goes to the control with the
 * same label; if there is none, to the last control.
 */
function keepFocus(parent: HTMLElement, change: () => void): void {
  const before = document.activeElement;
  const had = before !== parent && parent.contains(before);
  change();
  if (!had || parent.contains(document.activeElement)) return;
  const all = [...parent.querySelectorAll<HTMLElement>("input, button, summary, [tabindex]")]
    .filter((control) => !control.matches(":disabled"));
  const after = all.find((control) => labelOf(control) === labelOf(before!)) ?? all.at(-1);
  after?.focus();
}

export function replaceContent(parent: HTMLElement, ...content: (Node | string)[]): void {
  keepFocus(parent, () => parent.replaceChildren(...content));
}

/**
 * Makes the content of an element equal to other content, and keeps its elements where the other
 * ones have the same name and label: with them their listeners, the focus and what is being typed.
 */
export function updateContent(parent: HTMLElement, ...content: (Node | string)[]): void {
  keepFocus(parent, () => update(parent, content));
}

function update(parent: Element, content: (Node | string)[]): void {
  const old = [...parent.childNodes];
  const made = content.filter((each) => each !== "");
  made.forEach((each, i) => {
    const before = old[i];
    if (
      before instanceof Element && each instanceof Element &&
      before.tagName === each.tagName && before.ariaLabel === each.ariaLabel
    ) {
      for (const name of before.getAttributeNames()) {
        if (!each.hasAttribute(name)) before.removeAttribute(name);
      }
      for (const { name, value } of each.attributes) {
        if (before.getAttribute(name) !== value) before.setAttribute(name, value);
      }
      if (!(before instanceof HTMLInputElement)) update(before, [...each.childNodes]);
      else if (!typed.has(before) && before.value !== before.defaultValue) before.value = before.defaultValue;
    } else if (before instanceof Text && typeof each === "string") {
      if (before.data !== each) before.data = each;
    } else if (before) {
      before.replaceWith(each);
    } else {
      parent.append(each);
    }
  });
  for (const node of old.slice(made.length)) node.remove();
}

const numbers = new Intl.NumberFormat("en");
export function counted(count: number, thing: string): string {
  return `${numbers.format(count)} ${thing}${count === 1 ? "" : "s"}`;
}

/** Shows a message at the foot of the page, which screen readers announce. */
export function say(message: string, isAlert = false): void {
  const place = document.querySelector<HTMLElement>("#message")!;
  place.textContent = message;
  place.classList.toggle("alert", isAlert);
  place.hidden = message === "";
}

/** What failed with a file. */
export class FileError extends Error {
  constructor(readonly file: string, message: string) {
    super(message);
  }
}

/** Shows why something failed. The end of the worker has its own message. */
export function complain(error: unknown, what = error instanceof FileError ? error.file : ""): void {
  if (error instanceof WorkerEnded) return;
  say((what && `${what}: `) + messageOf(error), true);
}

export function messageOf(error: unknown): string {
  const text = error instanceof Error ? error.message : String(error);
  return text.charAt(0).toUpperCase() + text.slice(1);
}
