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

/**
 * Replaces the content of an element. The focus, and what is being typed, go to the control in the
 * new content that has the same label; if there is none, the focus goes to the last control.
 */
export function replaceContent(parent: HTMLElement, ...content: (Node | string)[]): void {
  const all = () => [...parent.querySelectorAll<HTMLElement>("input, button, summary, [tabindex]")];
  const label = (control: HTMLElement) =>
    control.ariaLabel ?? control.getAttribute("name") ?? control.textContent;
  const before = all().find((control) => control === document.activeElement);
  parent.replaceChildren(...content);
  if (!before) return;
  const enabled = all().filter((control) => !control.matches(":disabled"));
  const after = enabled.find((control) => label(control) === label(before)) ?? enabled.at(-1);
  if (
    before instanceof HTMLInputElement && after instanceof HTMLInputElement &&
    before.type !== "checkbox" && before.value !== before.defaultValue
  ) {
    after.value = before.value;
  }
  after?.focus();
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

/** Shows why something failed. The end of the worker has its own message. */
export function complain(error: unknown, what = ""): void {
  if (error instanceof WorkerEnded) return;
  say((what && `${what}: `) + messageOf(error), true);
}

export function messageOf(error: unknown): string {
  const text = error instanceof Error ? error.message : String(error);
  return text.charAt(0).toUpperCase() + text.slice(1);
}
