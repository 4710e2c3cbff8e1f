// Dilutions of precision and satellites over time, drawn from the same runs as in the program.
// Dragging selects a period; the keyboard moves and widens it.
import type { Client } from "./client";
import { button, element, svg } from "./dom";
import type { Series, TimeTick, ValueTick } from "./protocol";

export interface TimeRange {
  from: number;
  to: number;
}

const WIDTH = 960;
const LEFT = 46;
const RIGHT = 950;
const HEIGHT = 84;
const BETWEEN = 30;
const PANELS = [
  { title: "Dilution of precision", isWhole: false, lines: [["HDOP", 0], ["VDOP", 1], ["PDOP", 2]] },
  { title: "Satellites", isWhole: true, lines: [["used", 3], ["in view", 4]] },
] as const;

export class Plot {
  readonly root: HTMLElement;
  view: TimeRange = { from: 0, to: 1 };
  selection: TimeRange | null = null;
  private whole: TimeRange = { from: 0, to: 1 };
  private series: Series = [];
  private order = 0;
  private readonly picture: SVGSVGElement;
  private readonly bands: SVGRectElement[] = [];

  constructor(
    private readonly client: Client,
    private readonly onSelect: (range: TimeRange) => void,
    private readonly onZoom: (range: TimeRange) => void,
  ) {
    this.picture = svg("svg", {
      viewBox: `0 0 ${WIDTH} ${PANELS.length * (HEIGHT + BETWEEN) + 30}`,
      role: "img",
      "aria-label": "Dilution of precision and satellites over time",
    });
    const stage = element(
      "div",
      {
        class: "stage",
        tabindex: 0,
        role: "group",
        "aria-roledescription": "plot",
        "aria-label":
          "Plot. Left and right move the selection, with Shift they widen it, plus and minus zoom.",
        keydown: (event: KeyboardEvent) => this.key(event),
        pointerdown: (event: PointerEvent) => this.drag(event),
      },
      this.picture,
    );
    this.root = element(
      "section",
      { class: "plot", "aria-label": "Plots" },
      element(
        "div",
        { class: "bar" },
        button("Zoom to selection", () => this.selection && this.zoom(this.selection)),
        button("Zoom in", () => this.scale(0.5)),
        button("Zoom out", () => this.scale(2)),
        button("All", () => this.zoom(this.whole)),
      ),
      stage,
    );
  }

  /** Times are in seconds of GPS time. */
  setSeries(series: Series, view: TimeRange, whole: TimeRange): Promise<void> {
    this.series = series;
    this.view = view;
    this.whole = whole;
    return this.draw();
  }

  setSelection(selection: TimeRange | null): void {
    this.selection = selection;
    this.placeBands();
  }

  private async draw(): Promise<void> {
    const order = ++this.order;
    const { from, to } = this.view;
    const timeTicks = await this.client.ask<TimeTick[]>("timeTicks", from, to, 8);
    const valueTicks: ValueTick[][] = [];
    for (const panel of PANELS) {
      let top = 0;
      for (const [, number] of panel.lines) {
        const pairs = this.series[number] ?? new Float64Array();
        for (let i = 0; i < pairs.length; i += 2) {
          if (pairs[i]! >= from && pairs[i]! <= to) top = Math.max(top, pairs[i + 1]!);
        }
      }
      valueTicks.push(await this.client.ask<ValueTick[]>("valueTicks", top, 5, panel.isWhole));
    }
    if (order !== this.order) return;
    this.bands.length = 0;
    this.picture.replaceChildren(
      svg("defs", {}, svg("clipPath", { id: "plot-clip" },
        svg("rect", { x: LEFT, y: 0, width: RIGHT - LEFT, height: 1000 }))),
      ...PANELS.map((_, i) => this.drawPanel(i, timeTicks, valueTicks[i]!)),
      ...timeTicks.map((tick, i) =>
        svg("text", { x: this.x(tick.at), y: PANELS.length * (HEIGHT + BETWEEN) + 6, class: i === 0 ? "" : "middle" },
          i === 0 || tick.time === "00:00:00" ? `${tick.date} ${tick.time}` : tick.time)),
    );
    this.placeBands();
  }

  private drawPanel(number: number, timeTicks: TimeTick[], valueTicks: ValueTick[]): SVGElement {
    const panel = PANELS[number]!;
    const top = 22 + number * (HEIGHT + BETWEEN);
    const highest = valueTicks[valueTicks.length - 1]?.at ?? 1;
    const y = (value: number) => top + HEIGHT * (1 - value / highest);
    const band = svg("rect", { class: "band", y: top, height: HEIGHT });
    this.bands.push(band);
    return svg(
      "g",
      {},
      svg("text", { x: LEFT, y: top - 7, class: "title" }, panel.title),
      ...panel.lines.map(([name, line], i) =>
        svg("text", { x: RIGHT - 70 * (panel.lines.length - 1 - i), y: top - 7, class: `end series-${line}` }, name)),
      ...valueTicks.flatMap((tick) => [
        svg("line", { x1: LEFT, x2: RIGHT, y1: y(tick.at), y2: y(tick.at), class: "grid" }),
        svg("text", { x: LEFT - 6, y: y(tick.at) + 4, class: "end" }, tick.label),
      ]),
      ...timeTicks.map((tick) =>
        svg("line", { x1: this.x(tick.at), x2: this.x(tick.at), y1: top, y2: top + HEIGHT, class: "grid" })),
      band,
      ...panel.lines.map(([, line]) =>
        svg("path", {
          d: this.path(this.series[line] ?? new Float64Array(), y),
          class: `line series-${line}`,
          "clip-path": "url(#plot-clip)",
        })),
    );
  }

  private path(pairs: Float64Array, y: (value: number) => number): string {
    const parts: string[] = [];
    let begins = true;
    for (let i = 0; i < pairs.length; i += 2) {
      const time = pairs[i]!;
      if (Number.isNaN(time)) {
        begins = true;
        continue;
      }
      // A run of one point is a dot: a line of length 0 with round ends.
      const at = `${this.x(time).toFixed(2)} ${y(pairs[i + 1]!).toFixed(2)}`;
      parts.push(begins ? `M${at}L${at}` : `L${at}`);
      begins = false;
    }
    return parts.join("");
  }

  private x(time: number): number {
    const { from, to } = this.view;
    return LEFT + ((time - from) / (to - from)) * (RIGHT - LEFT);
  }
  private timeAt(event: PointerEvent): number {
    const box = this.picture.getBoundingClientRect();
    const x = ((event.clientX - box.left) / box.width) * WIDTH;
    const share = Math.min(1, Math.max(0, (x - LEFT) / (RIGHT - LEFT)));
    return this.view.from + share * (this.view.to - this.view.from);
  }

  private placeBands(): void {
    for (const band of this.bands) {
      const { selection } = this;
      band.toggleAttribute("hidden", !selection);
      if (!selection) {
        band.setAttribute("width", "0");
        continue;
      }
      const clamp = (x: number) => Math.min(RIGHT, Math.max(LEFT, x));
      const from = clamp(this.x(selection.from));
      const to = clamp(this.x(selection.to));
      band.setAttribute("x", String(from));
      const isSeen = selection.to >= this.view.from && selection.from <= this.view.to;
      band.setAttribute("width", String(isSeen ? Math.max(to - from, 2) : 0));
    }
  }

  private drag(start: PointerEvent): void {
    if (start.button !== 0) return;
    const first = this.timeAt(start);
    const target = start.currentTarget as HTMLElement;
    target.setPointerCapture(start.pointerId);
    const move = (event: PointerEvent) => {
      const other = this.timeAt(event);
      this.setSelection({ from: Math.min(first, other), to: Math.max(first, other) });
    };
    move(start);
    const end = () => {
      target.removeEventListener("pointermove", move);
      target.removeEventListener("pointerup", end);
      target.removeEventListener("pointercancel", end);
      if (this.selection) this.onSelect(this.selection);
    };
    target.addEventListener("pointermove", move);
    target.addEventListener("pointerup", end);
    target.addEventListener("pointercancel", end);
  }

  private scale(factor: number): void {
    const middle = this.selection
      ? (this.selection.from + this.selection.to) / 2
      : (this.view.from + this.view.to) / 2;
    const half = ((this.view.to - this.view.from) / 2) * factor;
    this.zoom({ from: middle - half, to: middle + half });
  }

  private zoom(range: TimeRange): void {
    const most = this.whole.to - this.whole.from;
    const width = Math.min(Math.max(range.to - range.from, 1), Math.max(most, 1));
    const middle = (range.from + range.to) / 2;
    const from = Math.max(this.whole.from, Math.min(middle - width / 2, this.whole.to - width));
    this.view = { from, to: from + width };
    void this.draw();
    this.onZoom(this.view);
  }

  private key(event: KeyboardEvent): void {
    const step = (this.view.to - this.view.from) / 50;
    const selection = this.selection ?? { from: this.view.from, to: this.view.from };
    const direction = event.key === "ArrowRight" ? 1 : event.key === "ArrowLeft" ? -1 : 0;
    if (direction !== 0) {
      const from = event.shiftKey ? selection.from : selection.from + direction * step;
      const to = Math.max(from, selection.to + direction * step);
      this.setSelection({ from, to });
      this.onSelect({ from, to });
    } else if (event.key === "+") {
      this.scale(0.5);
    } else if (event.key === "-") {
      this.scale(2);
    } else {
      return;
    }
    event.preventDefault();
  }
}
