// One record: its fields, its bytes coloured by block, and the change of its name, number and
// antenna height with a preview of the bytes.
import type { Client } from "./client";
import { button, element, messageOf, replaceContent } from "./dom";
import type { ByteField, Changes, RecordDetail } from "./protocol";

const KEY_WIDTH = 22; // as in the program's table
const COLOURS = 8;

function hex(byte: number): string {
  return byte.toString(16).padStart(2, "0");
}
function fieldName(field: ByteField): string {
  return field.name === "" ? field.block : `${field.block}: ${field.name}`;
}
function fieldValue(field: ByteField): string {
  return [field.value, field.unit].filter((part) => part !== "").join(" ");
}

/** The bytes of a frame; `before` marks those that differ from it. */
function byteDump(detail: RecordDetail, before?: Uint8Array): HTMLElement {
  const named = element("p", { class: "named", "aria-live": "polite" }, "Point at a byte to see its field.");
  const dump = element("div", {
    class: "dump",
    role: "group",
    tabindex: 0,
    "aria-label": "Bytes of the frame. Left and right go from field to field.",
  });
  let current = -1;
  const show = (number: number) => {
    const field = detail.bytes[number];
    if (!field) return;
    current = number;
    for (const byte of dump.querySelectorAll<HTMLElement>("[data-field]")) {
      byte.classList.toggle("shown", byte.dataset["field"] === String(number));
    }
    named.textContent = `Byte ${field.at}, ${field.size} long. ${fieldName(field)} ${fieldValue(field)}`;
  };
  detail.bytes.forEach((field, number) => {
    for (let i = field.at; i < field.at + field.size; ++i) {
      const byte = detail.frame[i] ?? 0;
      const isChanged = before !== undefined && before[i] !== byte;
      dump.append(
        element(
          "span",
          {
            class: `byte block-${field.blockNumber % COLOURS}${isChanged ? " changed" : ""}`,
            "data-field": number,
            title: `${fieldName(field)} ${fieldValue(field)}`.trim(),
          },
          hex(byte),
        ),
      );
    }
  });
  dump.addEventListener("pointerover", (event) => {
    const byte = (event.target as Element).closest<HTMLElement>("[data-field]");
    if (byte) show(Number(byte.dataset["field"]));
  });
  dump.addEventListener("keydown", (event) => {
    const step = event.key === "ArrowRight" ? 1 : event.key === "ArrowLeft" ? -1 : 0;
    if (step === 0) return;
    event.preventDefault();
    show(Math.max(0, Math.min(current + step, detail.bytes.length - 1)));
  });
  return element("div", {}, dump, named);
}

function fieldTable(text: string): HTMLElement {
  const body = element("tbody");
  for (const line of text.trimEnd().split("\n")) {
    const key = line.slice(0, KEY_WIDTH);
    const value = line.slice(KEY_WIDTH);
    const depth = Math.min((key.length - key.trimStart().length) / 2, 3);
    const isGroup = value === "" && line.length < KEY_WIDTH;
    body.append(
      element("tr", { class: `depth-${depth}` },
        element("th", { scope: "row" }, key.trim()),
        element("td", {}, isGroup ? "" : value)),
    );
  }
  return element("table", { class: "fields" }, element("caption", {}, "Fields"), body);
}

function byteTable(detail: RecordDetail): HTMLElement {
  const body = element("tbody");
  for (const field of detail.bytes) {
    const bytes = detail.frame.subarray(field.at, field.at + field.size);
    body.append(
      element("tr", {},
        element("td", { class: "number" }, String(detail.offset + field.at)),
        element("td", { class: `block-${field.blockNumber % COLOURS}` }, field.block),
        element("td", {}, field.name),
        element("td", {}, fieldValue(field)),
        element("td", { class: "hex" }, Array.from(bytes, hex).join(" "))),
    );
  }
  const head = ["Offset", "Block", "Field", "Value", "Bytes"].map((title) =>
    element("th", { scope: "col" }, title));
  return element("details", {},
    element("summary", {}, "Every field of the frame as a table"),
    element("div", { class: "wide", tabindex: 0, role: "region", "aria-label": "Fields of the frame" },
      element("table", { class: "bytes" }, element("thead", {}, element("tr", {}, ...head)), body)));
}

export class RecordView {
  readonly root = element("section", { class: "record", "aria-label": "Record" });

  constructor(
    private readonly client: Client,
    private readonly onKeep: (offset: number, before: Uint8Array, after: Uint8Array) => Promise<void>,
  ) {
    this.clear("Choose a record in the list to see its fields and bytes.");
  }

  clear(message: string): void {
    replaceContent(this.root, element("h3", {}, "Record"), element("p", {}, message));
  }

  show(detail: RecordDetail): void {
    replaceContent(this.root,
      element("h3", {}, `Record at ${detail.offset}`),
      detail.isWhole ? "" : element("p", { class: "alert" },
        `The frame cannot be decoded completely: ${detail.status === "done" ? "a block does not fit" : detail.status}.`),
      byteDump(detail),
      fieldTable(detail.text),
      byteTable(detail),
      detail.isWhole ? this.changeForm(detail) : "",
    );
  }

  private changeForm(detail: RecordDetail): HTMLElement {
    const name = element("input", { name: "name", value: detail.name, maxlength: 17 });
    const number = element("input", { name: "number", type: "number", value: detail.number, step: 1 });
    const height = element("input", {
      name: "height", type: "number", value: Number(detail.height.toPrecision(7)), step: "any",
    });
    const isSlant = element("input", { name: "slant", type: "checkbox" });
    isSlant.checked = detail.isSlant;
    const preview = element("div", { class: "preview", "aria-live": "polite" });
    let after: Uint8Array | undefined;
    let order = 0;
    const keep = button("Keep the change", () => {
      if (after) void this.onKeep(detail.offset, detail.frame, after);
    }, { disabled: true });
    const changes = (): Changes => ({
      ...(name.value !== detail.name ? { name: name.value } : {}),
      ...(number.valueAsNumber !== detail.number ? { number: number.valueAsNumber } : {}),
      ...(height.value !== String(Number(detail.height.toPrecision(7))) || isSlant.checked !== detail.isSlant
        ? { antenna: { height: height.valueAsNumber, isSlant: isSlant.checked } }
        : {}),
    });
    const update = async () => {
      const own = ++order;
      after = undefined;
      keep.disabled = true;
      const wanted = changes();
      if (Object.keys(wanted).length === 0) {
        preview.replaceChildren(element("p", {}, "Nothing is changed."));
        return;
      }
      if (wanted.number !== undefined && wanted.number !== (wanted.number | 0)) {
        preview.replaceChildren(element("p", { class: "alert" }, "The number must be a whole number of 32 bits."));
        return;
      }
      try {
        const patched = await this.client.ask<Uint8Array>("patch", detail.frame, wanted);
        const changed = await this.client.ask<RecordDetail>("describe", detail.offset, patched);
        if (own !== order) return; // the values have changed since
        after = patched;
        const count = patched.reduce((sum, byte, i) => sum + (byte === detail.frame[i] ? 0 : 1), 0);
        preview.replaceChildren(
          element("p", {}, `${count} bytes change; they are marked.`), byteDump(changed, detail.frame));
        keep.disabled = count === 0;
      } catch (error) {
        if (own !== order) return;
        preview.replaceChildren(element("p", { class: "alert" }, `The change is refused. ${messageOf(error)}.`));
      }
    };
    for (const input of [name, number, height, isSlant]) {
      input.addEventListener("input", () => void update());
    }
    return element("form", { class: "change", submit: (event: Event) => event.preventDefault() },
      element("h4", {}, "Change this record"),
      element("label", {}, "Name ", name),
      element("label", {}, "Number ", number),
      element("label", {}, "Antenna height [m] ", height),
      element("label", {}, isSlant, " slant height"),
      preview,
      keep);
  }
}
