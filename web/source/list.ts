// The list of records, with any number of rows: only the visible ones have elements. Browsers limit the
// height of an element, so the scroll bar of a very long list is scaled.
import { element } from "./dom";
import type { ListRow } from "./protocol";
import { FINDINGS } from "./row_index";

const ROW_HEIGHT = 26;
const MOST_HEIGHT = 8_000_000;
const COLUMNS: [keyof ListRow, string][] = [
  ["offset", "Offset"],
  ["size", "Bytes"],
  ["text", "Kind"],
  ["time", "GPS time"],
  ["hdop", "HDOP"],
  ["vdop", "VDOP"],
  ["pdop", "PDOP"],
  ["satellites", "Used/view"],
  ["name", "Name"],
];

export interface Range {
  from: number;
  to: number;
}

let lists = 0;

export class RecordList {
  readonly root: HTMLElement;
  private readonly id = `list-${++lists}`;
  /** The row with the keyboard focus, and the fixed end of the selection. */
  current = 0;
  private anchor = 0;
  private count = 0;
  private top = 0;
  private scrollTop = 0;
  private asked = 0;
  private readonly scroller: HTMLElement;
  private readonly space: HTMLElement;
  private readonly body: HTMLElement;

  constructor(
    private readonly ask: (from: number, count: number) => Promise<ListRow[]>,
    private readonly onSelect: (range: Range) => void,
    private readonly onOpen: (row: number) => void,
    private readonly onFailure: (error: unknown) => void,
  ) {
    const head = element(
      "div",
      { class: "row head", role: "row", "aria-rowindex": 1 },
      ...COLUMNS.map(([key, title]) => element("span", { role: "columnheader", class: key }, title)),
    );
    this.body = element("div", { class: "rows", role: "rowgroup" });
    this.space = element("div", { class: "space", role: "presentation" });
    this.scroller = element(
      "div",
      {
        class: "list",
        role: "grid",
        tabindex: 0,
        "aria-label": "Records of the file",
        "aria-multiselectable": "true",
        keydown: (event: KeyboardEvent) => this.key(event),
        scroll: () => this.scrolled(),
        wheel: (event: WheelEvent) => this.wheel(event),
      },
      element("div", { class: "heads", role: "rowgroup" }, head),
      this.body,
      this.space,
    );
    this.root = this.scroller;
    this.body.addEventListener("pointerdown", (event) => this.press(event));
    this.body.addEventListener("dblclick", () => this.onOpen(this.current));
    new ResizeObserver(() => void this.render()).observe(this.scroller);
  }

  get selection(): Range {
    return { from: Math.min(this.anchor, this.current), to: Math.max(this.anchor, this.current) };
  }

  setCount(count: number): Promise<void> {
    this.count = count;
    const last = Math.max(count - 1, 0);
    this.current = Math.min(this.current, last);
    this.anchor = Math.min(this.anchor, last);
    this.root.setAttribute("aria-rowcount", String(count + 1));
    this.space.style.height = `${Math.min(count * ROW_HEIGHT, MOST_HEIGHT)}px`;
    return this.render();
  }

  /** Shows a row, and selects it or extends the selection to it. */
  go(row: number, extends_ = false): void {
    if (this.count === 0) return;
    this.current = Math.max(0, Math.min(row, this.count - 1));
    if (!extends_) this.anchor = this.current;
    this.reveal(this.current);
    this.onSelect(this.selection);
  }

  select(range: Range): void {
    this.anchor = range.from;
    this.current = range.to;
    this.reveal(range.from);
    this.onSelect(this.selection);
  }

  async render(): Promise<void> {
    const order = ++this.asked;
    let rows: ListRow[] = [];
    try {
      rows = await this.ask(this.top, this.visible + 1);
    } catch (error) {
      if (order === this.asked) this.onFailure(error);
    }
    if (order !== this.asked) return;
    const { from, to } = this.selection;
    this.body.replaceChildren(
      ...rows.map((row) =>
        element(
          "div",
          {
            class: `row${(row.kind & FINDINGS) !== 0 ? " finding" : ""}`,
            id: this.idOf(row.row),
            role: "row",
            "aria-rowindex": row.row + 2,
            "aria-selected": String(from <= row.row && row.row <= to),
            "data-row": row.row,
          },
          ...COLUMNS.map(([key]) =>
            element(
              "span",
              { role: "gridcell", class: key, hidden: row[key] === undefined },
              String(row[key] ?? ""),
            ),
          ),
        ),
      ),
    );
    const current = this.body.querySelector(`#${this.idOf(this.current)}`);
    current?.classList.add("current");
    // A row that is not in view has no element.
    if (current) this.root.setAttribute("aria-activedescendant", current.id);
    else this.root.removeAttribute("aria-activedescendant");
    this.body.style.transform = `translateY(${this.scroller.scrollTop}px)`;
  }

  private idOf(row: number): string {
    return `${this.id}-${row}`;
  }
  private get visible(): number {
    return Math.max(1, Math.floor(this.scroller.clientHeight / ROW_HEIGHT) - 1);
  }
  private get lastTop(): number {
    return Math.max(0, this.count - this.visible);
  }

  private scrolled(): void {
    if (Math.abs(this.scroller.scrollTop - this.scrollTop) < 1.5) return void this.render();
    this.scrollTop = this.scroller.scrollTop;
    const reach = this.scroller.scrollHeight - this.scroller.clientHeight;
    this.top = reach > 0 ? Math.round((this.scroller.scrollTop / reach) * this.lastTop) : 0;
    void this.render();
  }

  private reveal(row: number): void {
    if (row < this.top || row >= this.top + this.visible) {
      this.scrollTo(row - Math.floor(this.visible / 3));
    }
    void this.render();
  }

  /** Scrolls exactly to a row, even if one pixel of the scroll bar is many rows. */
  private scrollTo(row: number): void {
    this.top = Math.max(0, Math.min(row, this.lastTop));
    const reach = this.scroller.scrollHeight - this.scroller.clientHeight;
    this.scroller.scrollTop = this.lastTop > 0 ? (this.top / this.lastTop) * reach : 0;
    this.scrollTop = this.scroller.scrollTop;
  }

  private wheel(event: WheelEvent): void {
    if (this.count * ROW_HEIGHT <= MOST_HEIGHT || event.deltaMode !== 0 || event.ctrlKey) return;
    event.preventDefault();
    this.scrollTo(this.top + Math.sign(event.deltaY) * Math.ceil(Math.abs(event.deltaY) / ROW_HEIGHT));
    void this.render();
  }

  private press(event: PointerEvent): void {
    const row = (event.target as Element).closest<HTMLElement>("[data-row]");
    if (!row) return;
    this.current = Number(row.dataset["row"]);
    if (!event.shiftKey) this.anchor = this.current;
    this.onSelect(this.selection);
    this.onOpen(this.current);
    void this.render();
  }

  private key(event: KeyboardEvent): void {
    const steps: Record<string, number> = {
      ArrowDown: this.current + 1,
      ArrowUp: this.current - 1,
      PageDown: this.current + this.visible,
      PageUp: this.current - this.visible,
      Home: 0,
      End: this.count - 1,
    };
    const to = steps[event.key];
    if (to !== undefined) {
      this.go(to, event.shiftKey);
    } else if (event.key === "Enter" || event.key === " ") {
      this.onOpen(this.current);
    } else if (event.key === "a" && (event.ctrlKey || event.metaKey)) {
      this.anchor = 0;
      this.current = Math.max(this.count - 1, 0);
      this.onSelect(this.selection);
      void this.render();
    } else {
      return;
    }
    event.preventDefault();
  }
}
